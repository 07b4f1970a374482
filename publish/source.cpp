#include "publish/source.h"

#include <array>
#include <fstream>

#include "base/text.h"
#include "platform/http.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace publish {
namespace {

namespace http = platform::http;

std::optional<std::string> Download(const std::string& url) {
  std::string content;
  if (!Receive(url, [&](std::string_view block) { content += block; })) return std::nullopt;
  return content;
}

/// The status that a HEAD request is answered with; empty without an answer.
std::string StatusOf(const std::string& url) {
  const auto parts = modFunciones::SplitUrl(url);
  const auto port = parts.empty() ? std::nullopt : modFunciones::PortNumber(parts[1]);
  if (!port) return "";
  std::int32_t length = modFunciones::TransferBlockSize;
  const std::string status = modFunciones::HttpHeadQuery(
      modFunciones::HTTP_QUERY_STATUS_CODE, parts[0], *port, parts[2], length, "", "", "",
      modFunciones::UserAgentText, modFunciones::PreconfiguredAccess, "", parts.size() > 3);
  return status == "0" ? "" : status;  // what Windows says without one
}

}  // namespace

bool IsUrl(const std::string& text) {
  return modFunciones::IsSecureUrl(text) || modFunciones::IsPlainUrl(text);
}

std::optional<std::string> Fetch(const std::string& fileOrUrl) {
  return IsUrl(fileOrUrl) ? Download(fileOrUrl) : ReadFile(PathOf(fileOrUrl));
}

std::string WhyUnreadable(const std::string& fileOrUrl) {
  if (!IsUrl(fileOrUrl)) {
    std::error_code error;
    if (std::filesystem::is_directory(PathOf(fileOrUrl), error)) return "is a folder";
    const bool isThere = std::filesystem::exists(PathOf(fileOrUrl), error);
    return isThere ? "cannot be read" : "is not there";
  }
  if (modFunciones::IsAvailable(fileOrUrl)) return "breaks off while it is read";
  const std::string status = StatusOf(fileOrUrl);
  if (!status.empty()) return "is answered with status " + status + " instead of 200";
  return modFunciones::IsSecureUrl(fileOrUrl)
             ? "gives no answer: there is no server, or its certificate is not trusted here, or it "
               "leads to a URL that is not https"
             : "gives no answer: there is no such server, or none that listens";
}

bool Receive(const std::string& url, const std::function<void(std::string_view)>& take) {
  if (!modFunciones::IsAvailable(url)) return false;
  const http::Handle root =
      http::OpenRoot(modFunciones::UserAgentText, modFunciones::PreconfiguredAccess, "");
  if (!root) return false;
  const http::Body body = http::OpenUrl(root, url);
  if (!body) return false;

  std::array<char, modFunciones::TransferBlockSize> block{};
  std::uint32_t received = 0;
  do {
    if (!http::Read(body, block.data(), block.size(), received)) return false;
    take({block.data(), received});
  } while (received > 0);
  return true;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!modFunciones::TakeCodePoint(text)) return false;
  }
  return true;
}

std::filesystem::path PathOf(const std::string& utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.generic_u8string();
  return {text.begin(), text.end()};
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::string content(static_cast<std::size_t>(std::filesystem::file_size(path, error)), '\0');
  std::ifstream file(path, std::ios::binary);
  if (error || !file.read(content.data(), static_cast<std::streamsize>(content.size()))) {
    return std::nullopt;
  }
  return content;
}

bool WriteFile(const std::filesystem::path& path, const std::string& content) {
  std::filesystem::path unfinished = path;
  unfinished += ".new";
  if (!(std::ofstream(unfinished, std::ios::binary) << content << std::flush)) return false;
  std::error_code error;
  std::filesystem::rename(unfinished, path, error);
  return !error;
}

}  // namespace publish
