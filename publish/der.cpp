#include "publish/der.h"

#include <algorithm>
#include <cstddef>

#include "base/binary_text.h"

namespace publish {
namespace {

// A length below 128 is one byte; a longer one says how many bytes it takes, and those follow.
constexpr unsigned char LongLength = 0x80;
constexpr std::size_t MostLengthBytes = 3;

constexpr std::size_t PemLineLength = 64;  // characters

std::string LengthOf(std::string_view content) {
  const std::size_t length = content.size();
  if (length < LongLength) return {static_cast<char>(length)};
  std::string bytes;
  for (std::size_t rest = length; rest > 0; rest >>= 8U) {
    bytes.insert(bytes.begin(), static_cast<char>(rest & 0xFFU));
  }
  return static_cast<char>(LongLength | bytes.size()) + bytes;
}

/// Takes a length off, as LengthOf writes it.
std::optional<std::size_t> TakeLength(std::string_view& der) {
  const auto take = [&]() -> std::size_t {
    const auto byte = static_cast<unsigned char>(der.front());
    der.remove_prefix(1);
    return byte;
  };
  if (der.empty()) return std::nullopt;
  const std::size_t first = take();
  if (first < LongLength) return first;
  std::size_t length = 0;
  std::size_t bytes = first - LongLength;
  if (bytes > MostLengthBytes || bytes > der.size()) return std::nullopt;
  for (; bytes > 0; --bytes) length = length << 8U | take();
  return length;
}

std::string Boundary(const char* which, std::string_view label) {
  return "-----" + std::string(which) + " " + std::string(label) + "-----";
}

}  // namespace

std::string Element(Tag tag, std::string_view content) {
  return static_cast<char>(tag) + LengthOf(content) + std::string(content);
}

std::optional<std::string_view> TakeElement(std::string_view& der, Tag tag) {
  if (!der.starts_with(static_cast<char>(tag))) return std::nullopt;
  std::string_view rest = der.substr(1);
  const auto length = TakeLength(rest);
  if (!length || *length > rest.size()) return std::nullopt;
  der = rest.substr(*length);
  return rest.substr(0, *length);
}

std::string ToPem(std::string_view label, std::string_view der) {
  const std::string base64 = modFunciones::Base64Text(der);
  std::string text = Boundary("BEGIN", label) + "\n";
  for (std::size_t at = 0; at < base64.size(); at += PemLineLength) {
    text += base64.substr(at, PemLineLength) + "\n";
  }
  return text + Boundary("END", label) + "\n";
}

std::optional<std::string> FromPem(std::string_view text, std::string_view label) {
  const std::string begin = Boundary("BEGIN", label);
  const auto start = text.find(begin);
  if (start == std::string_view::npos) return std::nullopt;
  text.remove_prefix(start + begin.size());
  const auto end = text.find(Boundary("END", label));
  if (end == std::string_view::npos) return std::nullopt;
  std::string base64(text.substr(0, end));
  std::erase_if(base64, [](char character) {
    return character == '\r' || character == '\n' || character == ' ' || character == '\t';
  });
  return modFunciones::FromBase64(base64);
}

}  // namespace publish
