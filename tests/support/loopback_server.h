#pragma once

// A strict HTTP server on loopback: it answers what the test says, in the way the test says, and
// remembers every request.

#include <array>
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "asio.hpp"

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
};

class LoopbackServer {
 public:
  LoopbackServer();
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  /// The URL of a path that begins with "/".
  [[nodiscard]] std::string Url(const std::string& path) const;
  /// HEAD and GET answer alike, unless ServeHead follows. A path that is not served answers 404.
  void Serve(const std::string& path, Reply reply);
  void ServeHead(const std::string& path, Reply reply);
  /// Lets every stalled reply go on.
  void Release();
  /// The requests since the last call, in order, such as "HEAD /info.txt HTTP/1.0".
  [[nodiscard]] std::vector<std::string> TakeRequests();
  [[nodiscard]] bool SawUserAgent(const std::string& userAgent);

 private:
  asio::ip::tcp::socket NextConnection();
  void Work();
  void Answer(asio::ip::tcp::socket socket);

  asio::io_context context;
  asio::ip::tcp::acceptor acceptor{context};
  std::atomic<bool> stopping = false;
  std::mutex mutex;
  std::condition_variable changed;
  bool released = false;
  std::map<std::string, Reply> replies;  // by method and path
  std::vector<std::string> requests;
  std::string lastRequest;
  std::mutex accepting;
  std::array<std::thread, 8> workers;  // as many stalled replies as there may be
};
