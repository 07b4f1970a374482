#include "publish/upload.h"

#include <array>
#include <fstream>
#include <utility>

#include "base/binary_text.h"
#include "base/text.h"
#include "platform/signature.h"
#include "publish/source.h"
#include "publish/urls.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
namespace signature = platform::signature;

std::string HexOf(signature::Digest digest) {
  return modFunciones::HexText(signature::Finish(std::move(digest)));
}

}  // namespace

std::vector<Download> DownloadsIn(const Script& script, std::size_t most) {
  std::vector<Download> downloads;
  for (std::size_t i = 0; i < script.lines.size() && downloads.size() < most; ++i) {
    const auto* const command = i == 0 ? nullptr : script.commands[i];
    const bool isDownload = command != nullptr && command->IsDownload();
    if (i > 0 && !isDownload) continue;
    const std::string& url = FieldAt(script.lines[i], i == 0 ? 1 : 2);
    if (!url.empty()) downloads.push_back({i, url});
  }
  return downloads;
}

fs::path FileNamed(const fs::path& folder, const std::string& end) {
  // Letters that the script has as they are; codes of other ones than UTF-8 name nothing.
  const std::string text = Decoded(IsUtf8(end) ? end : modFunciones::ToUtf8(end));
  if (!IsUtf8(text)) return {};
  const fs::path path = PathOf(text).lexically_normal();
  const bool isBelow = !path.empty() && !path.has_root_path() && *path.begin() != "..";
  return isBelow ? folder / path : fs::path();
}

std::size_t EndAtHand(const fs::path& folder, const std::string& url) {
  const auto host = url.find("//");
  if (folder.empty() || host == std::string::npos) return std::string::npos;
  for (auto at = url.find('/', host + 2); at != std::string::npos; at = url.find('/', at)) {
    ++at;
    const fs::path file = FileNamed(folder, url.substr(at));
    std::error_code error;
    if (!file.empty() && fs::is_regular_file(file, error)) return at;
  }
  return std::string::npos;
}

fs::path FileAtHand(const fs::path& folder, const std::string& url) {
  const auto at = EndAtHand(folder, url);
  return at == std::string::npos ? fs::path() : FileNamed(folder, url.substr(at));
}

std::optional<std::string> DigestOfFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  auto digest = signature::StartDigest();
  std::array<char, 65'536> block;
  while (file.read(block.data(), block.size()) || file.gcount() > 0) {
    signature::Add(digest, {block.data(), static_cast<std::size_t>(file.gcount())});
  }
  if (!file.eof()) return std::nullopt;  // it could not be opened, or read to its end
  return HexOf(std::move(digest));
}

std::optional<std::string> DigestOfUrl(const std::string& url) {
  auto digest = signature::StartDigest();
  const bool received =
      Receive(url, [&](std::string_view block) { signature::Add(digest, block); });
  if (!received) return std::nullopt;
  return HexOf(std::move(digest));
}

}  // namespace publish
