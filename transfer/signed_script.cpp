#include "transfer/signed_script.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/binary_text.h"
#include "base/text.h"
#include "platform/signature.h"

namespace modFunciones {
namespace {

constexpr std::string_view KeyMark = "#key=";

/// A "#KEY=" that named nothing would leave an application without the protection that it asks for.
std::size_t KeyMarkIn(std::string_view url) { return LowerCase(url).find(KeyMark); }

/// The fields of a line behind its mark, when there are two and neither is empty.
std::optional<std::pair<std::string_view, std::string_view>> TwoFields(std::string_view line,
                                                                       std::string_view mark) {
  if (!line.starts_with(mark)) return std::nullopt;
  line.remove_prefix(mark.size());
  const std::size_t bar = std::min(line.find('|'), line.size());
  const auto first = line.substr(0, bar);
  const auto second = line.substr(std::min(bar + 1, line.size()));
  if (first.empty() || second.empty() || second.find('|') != std::string_view::npos) {
    return std::nullopt;
  }
  return std::pair(first, second);
}

/// Where the first signature begins: behind the last byte that is signed.
std::size_t SignedLength(std::string_view script) {
  if (script.starts_with(SignatureMark)) return 0;
  const std::size_t found = script.find('\n' + std::string(SignatureMark));
  return found == std::string_view::npos ? 0 : found + 1;
}

/// signatures: the rest of the script, in which nothing else may stand. A key signs once, since a
/// script of which every line had to be looked at would take for ever.
bool OneFits(std::string_view content, std::string_view signatures, std::string_view key) {
  bool fits = false;
  while (!signatures.empty()) {
    const std::string_view line = TakeLine(signatures);
    if (line.empty()) continue;
    const auto fields = TwoFields(line, SignatureMark);
    if (!fields) return false;
    const auto publicKey = FromBase64(fields->first);
    const auto signature = FromBase64(fields->second);
    if (!publicKey || !signature) return false;
    if (Sha256Text(*publicKey) != key) continue;
    if (fits || !platform::signature::IsSignedBy(*publicKey, content, *signature)) return false;
    fits = true;
  }
  return fits;
}

}  // namespace

std::string WithoutKey(std::string_view url) { return std::string(url.substr(0, KeyMarkIn(url))); }

std::optional<std::string> NamedKey(std::string_view url) {
  const std::size_t mark = KeyMarkIn(url);
  if (mark == std::string_view::npos) return std::nullopt;
  // An empty argument behind it on the command line leaves a blank.
  const std::string_view key = url.substr(mark + KeyMark.size());
  return LowerCase(key.substr(0, key.find_last_not_of(" \t") + 1));
}

std::string_view TakeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool IsSha256(std::string_view text) {
  return text.size() == 64 &&
         text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string Sha256Text(std::string_view bytes) {
  auto digest = platform::signature::StartDigest();
  platform::signature::Add(digest, bytes);
  return HexText(platform::signature::Finish(std::move(digest)));
}

std::optional<Digests> DigestsIn(std::string_view text) {
  Digests digests;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (!line.starts_with(DigestMark)) continue;
    const auto fields = TwoFields(line, DigestMark);
    if (!fields || !IsSha256(fields->first)) return std::nullopt;
    const std::string digest = LowerCase(fields->first);
    const auto known = digests.try_emplace(std::string(fields->second), digest).first;
    if (known->second != digest) return std::nullopt;
  }
  return digests;
}

std::optional<Digests> SignedDigests(std::string_view script, std::string_view key) {
  const std::size_t length = SignedLength(script);
  const std::string_view content = script.substr(0, length);
  if (!IsSha256(key) || content.empty() || !OneFits(content, script.substr(length), key)) {
    return std::nullopt;
  }
  return DigestsIn(content);
}

}  // namespace modFunciones
