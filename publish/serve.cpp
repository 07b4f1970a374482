#include "publish/serve.h"

#include <asio.hpp>
#include <iostream>
#include <thread>
#include <utility>

#include "base/arrays.h"
#include "base/replace.h"
#include "base/text.h"
#include "publish/key_files.h"
#include "publish/order.h"
#include "publish/report.h"
#include "publish/site.h"
#include "publish/source.h"
#include "publish/trust.h"
#include "publish/upload.h"
#include "publish/urls.h"

namespace publish {
namespace {

using asio::ip::tcp;
constexpr const char* NotForKeys =
    "The script is signed, and with other URLs it no longer fits: installations that name a key "
    "refuse it here, so leave #key= out.\n";

/// What an upload folder is served as.
struct Service {
  std::filesystem::path folder;
  std::string url;       // where it will be found, or ""
  std::string localUrl;  // where it is served
};

/// The bytes for the target of a request; nothing where there is no such file in the folder.
std::optional<std::string> ContentFor(const std::string& target, const Service& service) {
  const std::string path = target.substr(0, target.find('?'));
  const auto first = std::min(path.find_first_not_of('/'), path.size());
  const auto file = FileNamed(service.folder, path.substr(first));
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error) || IsPrivateKeyFile(file)) return std::nullopt;
  auto content = ReadFile(file);
  if (!content || file.filename() != ScriptName || service.url.empty()) return content;
  return modFunciones::ReplaceAll(*content, service.url, service.localUrl);
}

void Answer(tcp::socket socket, const Service& service) {
  asio::error_code error;
  std::string request;
  constexpr std::size_t LongestRequest = 1 << 16;
  asio::read_until(socket, asio::dynamic_buffer(request, LongestRequest), "\r\n\r\n", error);
  if (error) return;
  const std::string line = request.substr(0, request.find("\r\n"));
  const auto words = modFunciones::Split(line, ' ');
  const bool isHead = line.starts_with("HEAD ");
  const bool isKnown = words.size() == 3 && (isHead || line.starts_with("GET "));
  const auto content = isKnown ? ContentFor(words[1], service) : std::nullopt;
  const std::string status = content ? "200 OK" : "404 Not Found";
  const std::string answer = "HTTP/1.1 " + status +
                             "\r\nContent-Length: " + std::to_string(content.value_or("").size()) +
                             "\r\nCache-Control: no-store\r\nConnection: close\r\n\r\n" +
                             (isHead ? "" : content.value_or(""));
  std::cout << line + " - " + status + "\n" << std::flush;
  asio::write(socket, asio::buffer(answer), error);
  socket.shutdown(tcp::socket::shutdown_both, error);
}

/// An installed version that may get an update.
std::string VersionToTry(const Script& script) {
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    if (!script.Is(i, modPrincipal::Verb::Version)) continue;
    return modFunciones::ToUtf8(FieldAt(script.lines[i], 2));
  }
  return "1.0.0";
}

}  // namespace

int RunServe(const ServeOptions& options) {
  const std::filesystem::path folder = PathOf(options.site);
  const auto text = ReadFile(folder / ScriptName);
  if (!text) {
    ReportProblems({options.site + " has no " + ScriptName + "."}, false);
    return Failed;
  }
  asio::io_context context;
  tcp::acceptor acceptor(context, tcp::v4());
  asio::error_code error;
  acceptor.set_option(tcp::acceptor::reuse_address(true));  // right after a former trial
  acceptor.bind({asio::ip::address_v4::loopback(), options.port}, error);
  if (!error) acceptor.listen(tcp::acceptor::max_listen_connections, error);
  if (error) {
    ReportProblems({"Port " + std::to_string(options.port) + " cannot be had: " + error.message() +
                    "; name another one with --port."},
                   false);
    return Failed;
  }

  const Script script = CutWithNumbers(*text);
  const std::string url = options.url.empty() ? Site(folder, script).Url() : options.url;
  const Service service = {folder, url, "http://127.0.0.1:" + std::to_string(options.port) + "/"};
  std::cout << "Serving " << options.site << " until you press Ctrl+C. Try it in a copy of the "
            << "application's folder:\n  Kestrane.exe \"" << VersionToTry(script)
            << "\" \"C:\\copy\" \"" << service.localUrl << ScriptName << "\"\n"
            << (url == service.localUrl || KeysNamedIn(*text).empty() ? "" : NotForKeys)
            << std::flush;
  for (;;) {
    std::thread([socket = acceptor.accept(), &service]() mutable {
      Answer(std::move(socket), service);
    }).detach();
  }
}

}  // namespace publish
