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

/// Empty when the text is no name of a file below a folder.
fs::path PathBelow(const std::string& text) {
  const bool isUtf8 = modFunciones::FromUtf8(text).has_value();
  const fs::path path = PathOf(isUtf8 ? text : modFunciones::ToUtf8(text)).lexically_normal();
  const bool isBelow = path.is_relative() && !path.has_root_name() && *path.begin() != "..";
  return isBelow ? path : fs::path();
}

std::string HexOf(signature::Digest digest) {
  return modFunciones::HexText(signature::Finish(std::move(digest)));
}

}  // namespace

std::vector<Download> DownloadsIn(const Script& script) {
  std::vector<Download> downloads;
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    const auto* const command = i == 0 ? nullptr : script.commands[i];
    const bool isDownload = command != nullptr && command->effect == modPrincipal::Effect::Download;
    if (i > 0 && !isDownload) continue;
    const std::string& url = FieldAt(script.lines[i], i == 0 ? 1 : 2);
    if (!url.empty()) downloads.push_back({i, url});
  }
  return downloads;
}

fs::path FileAtHand(const fs::path& folder, const std::string& url) {
  if (folder.empty()) return {};
  std::string end = Decoded(url);
  for (auto slash = end.find('/'); slash != std::string::npos; slash = end.find('/')) {
    end.erase(0, slash + 1);
    if (end.empty() || end.starts_with('/')) continue;
    const fs::path below = PathBelow(end);
    std::error_code error;
    if (!below.empty() && fs::is_regular_file(folder / below, error)) return folder / below;
  }
  return {};
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
