#include "tests/support/loopback_server.h"

using asio::ip::tcp;

namespace {

void Close(tcp::socket& socket, bool resets) {
  asio::error_code ignored;
  if (resets) {
    socket.set_option(asio::socket_base::linger(true, 0), ignored);
  } else {
    socket.shutdown(tcp::socket::shutdown_both, ignored);
  }
  socket.close(ignored);
}

}  // namespace

LoopbackServer::LoopbackServer() {
  // The program's port is a signed 16-bit number: search below the ports that the system gives out.
  asio::error_code failure = asio::error::address_in_use;
  const tcp::endpoint any(asio::ip::address_v4::loopback(), 0);
  acceptor.open(any.protocol());
  for (unsigned short port = 20000; failure && port < 32000; ++port) {
    acceptor.bind({any.address(), port}, failure);
  }
  acceptor.listen();
  for (auto& worker : workers) worker = std::thread([this] { Work(); });
}

LoopbackServer::~LoopbackServer() {
  Release();
  stopping = true;
  for (std::size_t i = 0; i < workers.size(); ++i) {
    asio::error_code ignored;
    tcp::socket(context).connect(acceptor.local_endpoint(), ignored);  // wakes one up
  }
  for (auto& worker : workers) worker.join();
}

std::string LoopbackServer::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(acceptor.local_endpoint().port()) + path;
}

void LoopbackServer::Serve(const std::string& path, Reply reply) {
  const std::lock_guard lock(mutex);
  replies["HEAD " + path] = reply;
  replies["GET " + path] = std::move(reply);
}

void LoopbackServer::ServeHead(const std::string& path, Reply reply) {
  const std::lock_guard lock(mutex);
  replies["HEAD " + path] = std::move(reply);
}

void LoopbackServer::Release() {
  const std::lock_guard lock(mutex);
  released = true;
  changed.notify_all();
}

std::vector<std::string> LoopbackServer::TakeRequests() {
  const std::lock_guard lock(mutex);
  return std::exchange(requests, {});
}

bool LoopbackServer::SawUserAgent(const std::string& userAgent) {
  const std::lock_guard lock(mutex);
  return lastRequest.find("User-Agent: " + userAgent + "\r\n") != std::string::npos;
}

tcp::socket LoopbackServer::NextConnection() {
  const std::lock_guard lock(accepting);
  return acceptor.accept();
}

void LoopbackServer::Work() {
  for (tcp::socket socket = NextConnection(); !stopping; socket = NextConnection()) {
    Answer(std::move(socket));
  }
}

void LoopbackServer::Answer(tcp::socket socket) {
  asio::error_code failure;
  std::string request;
  asio::read_until(socket, asio::dynamic_buffer(request), "\r\n\r\n", failure);
  if (failure) return;
  const std::string line = request.substr(0, request.find("\r\n"));

  std::unique_lock lock(mutex);
  requests.push_back(line);
  lastRequest = request;
  const auto found = replies.find(line.substr(0, line.rfind(' ')));
  const Reply reply = found != replies.end() ? found->second : Reply{"", "404 Not Found"};
  lock.unlock();

  const std::string length = reply.contentLength.value_or(std::to_string(reply.body.size()));
  if (reply.raw) {
    asio::write(socket, asio::buffer(*reply.raw), failure);
    return Close(socket, reply.resets);
  }
  const std::string head = "HTTP/1.1 " + reply.status + "\r\nConnection: close\r\n" +
                           reply.headers +
                           (length.empty() ? "" : "Content-Length: " + length + "\r\n") + "\r\n";
  const std::string body = request.starts_with("HEAD") ? "" : reply.body.substr(0, reply.cutAt);
  const std::size_t half = reply.stalls ? body.size() / 2 : body.size();
  asio::write(socket, asio::buffer(head + body.substr(0, half)), failure);
  if (half < body.size()) {
    lock.lock();
    changed.wait(lock, [this] { return released; });
    lock.unlock();
    asio::write(socket, asio::buffer(body.substr(half)), failure);
  }
  Close(socket, reply.resets);
}
