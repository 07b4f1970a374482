#include "publish/source.h"

#include <array>
#include <fstream>

#include "platform/http.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace publish {
namespace {

namespace http = platform::http;

std::optional<std::string> Download(const std::string& url) {
  if (!modFunciones::IsAvailable(url)) return std::nullopt;
  const http::Handle root =
      http::OpenRoot(modFunciones::UserAgentText, modFunciones::PreconfiguredAccess, "");
  if (!root) return std::nullopt;
  const http::Body body = http::OpenUrl(root, url);
  if (!body) return std::nullopt;

  std::string content;
  std::array<char, modFunciones::TransferBlockSize> block{};
  std::uint32_t received = 0;
  do {
    if (!http::Read(body, block.data(), block.size(), received)) return std::nullopt;
    content.append(block.data(), received);
  } while (received > 0);
  return content;
}

}  // namespace

bool IsUrl(const std::string& text) {
  return modFunciones::IsPlainUrl(text) || modFunciones::IsSecureUrl(text);
}

std::optional<std::string> Fetch(const std::string& fileOrUrl) {
  return IsUrl(fileOrUrl) ? Download(fileOrUrl) : ReadFile(PathOf(fileOrUrl));
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

}  // namespace publish
