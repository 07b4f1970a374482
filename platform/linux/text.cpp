#include "platform/linux/text.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/text.h"

namespace platform::linux_layer {
namespace {

constexpr char32_t FirstMapped = 0x80;
constexpr char32_t FirstUnmapped = 0xA0;
constexpr char32_t LastOfCodePage = 0xFF;

unsigned char ByteAt(std::string_view value, std::size_t at) {
  return static_cast<unsigned char>(value[at]);
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (codePoint < 0x80) {
    append(codePoint);
  } else if (codePoint < 0x800) {
    append(0xC0U | codePoint >> 6U);
    append(0x80U | (codePoint & 0x3FU));
  } else {
    append(0xE0U | codePoint >> 12U);
    append(0x80U | (codePoint >> 6U & 0x3FU));
    append(0x80U | (codePoint & 0x3FU));
  }
}

/// Bytes of the character that begins with this byte; 1 for a byte that begins none.
std::size_t LengthOfCharacter(unsigned char first) {
  if (first >= 0xF0) return 4;
  if (first >= 0xE0) return 3;
  return first >= 0xC0 ? 2 : 1;
}

bool IsCharacter(std::string_view bytes, std::size_t length) {
  const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) >> 6U) == 2U; };
  return bytes.size() == length && std::all_of(bytes.begin() + 1, bytes.end(), continues);
}

char32_t CodePointOf(std::string_view character) {
  constexpr std::array<unsigned, 5> FirstBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t codePoint = ByteAt(character, 0) & FirstBits[character.size()];
  for (std::size_t i = 1; i < character.size(); ++i) {
    codePoint = codePoint << 6U | (ByteAt(character, i) & 0x3FU);
  }
  return codePoint;
}

char ToCodePage(char32_t codePoint) {
  const auto& mapped = text::CodePointsFrom0x80;
  const auto found = std::find(mapped.begin(), mapped.end(), codePoint);
  if (found != mapped.end()) return static_cast<char>(FirstMapped + (found - mapped.begin()));
  const bool same =
      codePoint < FirstMapped || (codePoint >= FirstUnmapped && codePoint <= LastOfCodePage);
  return same ? static_cast<char>(codePoint) : '?';
}

}  // namespace

std::string ToUtf8(std::string_view value) {
  std::string converted;
  converted.reserve(value.size());
  for (const char character : value) {
    const auto byte = static_cast<unsigned char>(character);
    const bool mapped = byte >= FirstMapped && byte < FirstUnmapped;
    AppendUtf8(converted, mapped ? text::CodePointsFrom0x80[byte - FirstMapped] : byte);
  }
  return converted;
}

std::string FromUtf8(std::string_view value) {
  std::string converted;
  while (!value.empty()) {
    std::size_t length = LengthOfCharacter(ByteAt(value, 0));
    const std::string_view character = value.substr(0, length);
    if (length > 1 && IsCharacter(character, length)) {
      converted += ToCodePage(CodePointOf(character));
    } else {
      converted += value.front();
      length = 1;
    }
    value.remove_prefix(length);
  }
  return converted;
}

}  // namespace platform::linux_layer
