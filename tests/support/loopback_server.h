#pragma once

// A strict HTTP server on loopback: it answers what the test says, in the way the test says, and
// fails the test by itself when a request is missing or was not expected.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "asio.hpp"
#include "transfer/http_probe.h"

/// What a path answers. Content-Length is that of the body unless the test says otherwise.
struct Reply {
  std::string body = "";
  std::string status = "200 OK";
  std::optional<std::string> contentLength = std::nullopt;  // "" leaves the header out
  std::string headers = "";                                 // further lines, each with its line end
  std::size_t cutAt = std::string::npos;  // bytes of the body that are sent before the close
  bool stalls = false;                    // keeps the rest of the body back until Release
  std::optional<std::string> raw = std::nullopt;  // all that is sent, in the place of all of that
  bool resets = false;  // the connection breaks off instead of being closed
  /// The requests for the path, by their first letters: two probes and a download, say. "*": any
  /// number, but one at least.
  std::string asked = "HHG";
};

class LoopbackServer {
 public:
  LoopbackServer() {
    // The program's port is a signed 16-bit number: search below those that the system gives out.
    asio::error_code failure = asio::error::address_in_use;
    acceptor.open(asio::ip::tcp::v4());
    for (unsigned short port = 20000; failure && port < 32000; ++port) {
      acceptor.bind({asio::ip::address_v4::loopback(), port}, failure);
    }
    acceptor.listen();
    Listen();
    for (auto& thread : threads) thread = std::jthread([this] { context.run(); });
  }
  ~LoopbackServer() {
    Release();
    context.stop();
    for (auto& thread : threads) thread.join();
    for (const auto& [path, page] : pages) ExpectAll(path);
    EXPECT_TRUE(expectsAnything || unexpected.empty()) << "not expected: " << unexpected;
  }
  LoopbackServer& operator=(LoopbackServer&&) = delete;

  /// The URL of a path that begins with "/".
  [[nodiscard]] std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(acceptor.local_endpoint().port()) + path;
  }

  /// HEAD and GET answer alike, unless the first has an answer of its own. What was expected of the
  /// path before is to have come.
  void Serve(const std::string& path, const Reply& reply,
             const std::optional<Reply>& toHead = std::nullopt) {
    const std::lock_guard lock(mutex);
    if (pages.contains(path)) ExpectAll(path);
    pages[path] = {toHead.value_or(reply), reply};
  }

  /// Lets every stalled reply go on.
  void Release() {
    released = true;
    released.notify_all();
  }

  /// There may be any requests.
  void ExpectAnything() { expectsAnything = true; }

  /// The requests for a path so far, as in Reply.
  [[nodiscard]] std::string Asked(const std::string& path) {
    const std::lock_guard lock(mutex);
    return pages.at(path).asked;
  }

  /// Returns when nothing is left of any answer.
  void WaitUntilQuiet() const {
    for (int left = 0; (left = answering) != 0;) answering.wait(left);
  }

 private:
  using Socket = asio::ip::tcp::socket;
  struct Page {
    Reply head, get;
    std::string asked = "";
  };

  void Listen() {
    acceptor.async_accept([this](asio::error_code failure, Socket socket) {
      ++answering;
      Listen();
      if (!failure) Answer(socket);
      socket.close(failure);
      --answering;
      answering.notify_all();
    });
  }

  void ExpectAll(const std::string& path) const {
    const auto& [head, get, asked] = pages.at(path);
    const bool isRight = get.asked == "*" ? !asked.empty() : asked == get.asked;
    EXPECT_TRUE(expectsAnything || isRight) << path << " was asked for " << asked;
  }

  Reply ReplyTo(const std::string& request) {
    const std::string line = request.substr(0, request.find("\r\n"));
    const bool isHead = line.starts_with("HEAD");
    const auto path = line.find('/');
    const std::string agent = std::string("User-Agent: ") + modFunciones::UserAgentText + "\r\n";
    const std::lock_guard lock(mutex);
    const auto page = pages.find(line.substr(path, line.rfind(' ') - path));
    // Windows follows a redirection in HTTP/1.1.
    const bool isRight = page != pages.end() && request.find(agent) != std::string::npos &&
                         (line.ends_with(isHead ? " HTTP/1.0" : " HTTP/1.1") || wasRedirected);
    if (!isRight) unexpected += request;
    if (page == pages.end()) return {"", "404 Not Found"};
    page->second.asked += line[0];
    const Reply& reply = isHead ? page->second.head : page->second.get;
    wasRedirected = reply.status.starts_with("302");
    return reply;
  }

  void Answer(Socket& socket) {
    asio::error_code failure;
    std::string request;
    asio::read_until(socket, asio::dynamic_buffer(request), "\r\n\r\n", failure);
    if (failure) return;
    const Reply reply = ReplyTo(request);
    const std::string length = reply.contentLength.value_or(std::to_string(reply.body.size()));
    const std::string head = "HTTP/1.1 " + reply.status + "\r\nConnection: close\r\n" +
                             reply.headers +
                             (length.empty() ? "" : "Content-Length: " + length + "\r\n") + "\r\n";
    const std::string body = request.starts_with("HEAD") ? "" : reply.body.substr(0, reply.cutAt);
    const std::size_t half = reply.stalls ? body.size() / 2 : body.size();
    asio::write(socket, asio::buffer(reply.raw.value_or(head + body.substr(0, half))), failure);
    if (half < body.size()) {
      released.wait(false);
      asio::write(socket, asio::buffer(body.substr(half)), failure);
    }
    if (reply.resets) {
      socket.set_option(asio::socket_base::linger(true, 0), failure);
    } else {
      socket.shutdown(Socket::shutdown_both, failure);
    }
  }

  asio::io_context context;
  asio::ip::tcp::acceptor acceptor{context};
  std::mutex mutex;
  std::atomic<bool> released = false;
  std::map<std::string, Page> pages;  // by path
  std::string unexpected;
  bool expectsAnything = false;
  bool wasRedirected = false;  // the last request
  std::atomic<int> answering = 0;
  std::array<std::jthread, 8> threads;  // as many stalled replies as there may be
};
