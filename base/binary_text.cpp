#include "base/binary_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace modFunciones {
namespace {

constexpr std::string_view HexDigits = "0123456789abcdef";
constexpr std::string_view Base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Three bytes are four digits of six bits each.
constexpr std::size_t BytesOfGroup = 3;
constexpr std::size_t DigitsOfGroup = 4;

}  // namespace

std::string HexText(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    text += HexDigits[byte >> 4U];
    text += HexDigits[byte & 0xFU];
  }
  return text;
}

std::string Base64Text(std::string_view bytes) {
  std::string text;
  for (std::size_t start = 0; start < bytes.size(); start += BytesOfGroup) {
    const std::string_view group = bytes.substr(start, BytesOfGroup);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < BytesOfGroup; ++i) {
      bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    }
    for (std::size_t i = 0; i < DigitsOfGroup; ++i) {
      text += i <= group.size() ? Base64Digits[bits >> (18U - 6U * i) & 0x3FU] : '=';
    }
  }
  return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
  if (text.size() % DigitsOfGroup != 0) return std::nullopt;
  const std::size_t digits = text.find_last_not_of('=') + 1;
  const std::size_t padding = text.size() - digits;
  if (padding >= BytesOfGroup) return std::nullopt;
  std::string bytes;
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t value = i < digits ? Base64Digits.find(text[i]) : 0;
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6U | static_cast<std::uint32_t>(value);
    if (i % DigitsOfGroup != DigitsOfGroup - 1) continue;
    for (const unsigned shift : {16U, 8U, 0U}) bytes += static_cast<char>(bits >> shift & 0xFFU);
  }
  bytes.resize(bytes.size() - padding);
  return bytes;
}

}  // namespace modFunciones
