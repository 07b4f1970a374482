#include "publish/encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/text.h"

namespace publish {
namespace {

constexpr unsigned FirstMapped = 0x80;
constexpr unsigned FirstUnmapped = 0xA0;
constexpr std::array<unsigned, 5> Unassigned = {0x81, 0x8D, 0x8F, 0x90, 0x9D};

unsigned ByteOf(char character) { return static_cast<unsigned char>(character); }

unsigned CodePointOf(unsigned byte) {
  const bool mapped = byte >= FirstMapped && byte < FirstUnmapped;
  return mapped ? platform::text::CodePointsFrom0x80[byte - FirstMapped] : byte;
}

/// Nothing when the code page lacks the character.
std::optional<char> ByteFor(unsigned codePoint) {
  for (unsigned byte = 0; byte <= 0xFF; ++byte) {
    if (CodePointOf(byte) == codePoint) return static_cast<char>(byte);
  }
  return std::nullopt;
}

/// Number of bytes of a sequence by its first one; 0 when none begins so.
std::size_t SequenceLength(unsigned first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first < 0xE0) return 2;
  if (first >= 0xE0 && first < 0xF0) return 3;
  if (first >= 0xF0 && first < 0xF5) return 4;
  return 0;
}

/// Takes one character off the front; nothing when it is no UTF-8.
std::optional<unsigned> TakeCodePoint(std::string_view& value) {
  const std::size_t length = SequenceLength(ByteOf(value.front()));
  if (length == 0 || length > value.size()) return std::nullopt;
  unsigned codePoint = length == 1 ? ByteOf(value[0]) : ByteOf(value[0]) & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteOf(value[i]) & 0xC0U) != 0x80U) return std::nullopt;
    codePoint = codePoint << 6U | (ByteOf(value[i]) & 0x3FU);
  }
  value.remove_prefix(length);
  return codePoint;
}

}  // namespace

std::string ToUtf8(std::string_view value) {
  std::string converted;
  for (const char character : value) {
    const unsigned codePoint = CodePointOf(ByteOf(character));
    if (codePoint < 0x80) {
      converted += character;
    } else if (codePoint < 0x800) {
      converted += static_cast<char>(0xC0U | codePoint >> 6U);
      converted += static_cast<char>(0x80U | (codePoint & 0x3FU));
    } else {
      converted += static_cast<char>(0xE0U | codePoint >> 12U);
      converted += static_cast<char>(0x80U | (codePoint >> 6U & 0x3FU));
      converted += static_cast<char>(0x80U | (codePoint & 0x3FU));
    }
  }
  return converted;
}

std::optional<std::string> FromUtf8(std::string_view value) {
  std::string converted;
  while (!value.empty()) {
    const auto codePoint = TakeCodePoint(value);
    const auto byte = codePoint ? ByteFor(*codePoint) : std::nullopt;
    if (!byte) return std::nullopt;
    converted += *byte;
  }
  return converted;
}

std::filesystem::path PathOf(const std::string& utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.generic_u8string();
  return {text.begin(), text.end()};
}

bool IsUtf8(std::string_view value) {
  while (!value.empty()) {
    if (!TakeCodePoint(value)) return false;
  }
  return true;
}

bool IsUnassigned(char byte) {
  return std::find(Unassigned.begin(), Unassigned.end(), ByteOf(byte)) != Unassigned.end();
}

}  // namespace publish
