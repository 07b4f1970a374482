#pragma once

// Text of the whole program: std::string, one byte a character, code page Windows-1252. All 256
// byte values are kept apart, so binary content passes through text unharmed. The outside world
// speaks UTF-8.

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace modFunciones {

/// Upper-case and lower-case forms of a text, accented letters included; the length is kept.
[[nodiscard]] std::string UpperCase(std::string_view value);
[[nodiscard]] std::string LowerCase(std::string_view value);

/// Whether nothing but letter case tells two texts apart.
[[nodiscard]] bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Unicode code points of the bytes 0x80 to 0x9F; every other byte is its own code point. The five
/// bytes that the code page leaves free stand for the control characters of the same value.
inline constexpr std::array<char16_t, 32> CodePointsFrom0x80 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// The code point of a character of the code page.
[[nodiscard]] constexpr char16_t CodePointOf(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 && byte < 0xA0 ? CodePointsFrom0x80[byte - 0x80U] : byte;
}

/// The character of the code page that has a code point; nothing when it lacks one.
[[nodiscard]] constexpr std::optional<char> CharacterFor(char32_t codePoint) {
  if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) {
    return static_cast<char>(codePoint);
  }
  const auto found = std::find(CodePointsFrom0x80.begin(), CodePointsFrom0x80.end(), codePoint);
  if (found == CodePointsFrom0x80.end()) return std::nullopt;
  return static_cast<char>(0x80 + (found - CodePointsFrom0x80.begin()));
}

/// Takes the first character, at least one byte long, off a text in UTF-8; nothing, and nothing is
/// taken, when the text begins with none.
[[nodiscard]] constexpr std::optional<char32_t> TakeCodePoint(std::string_view& utf8) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const unsigned first = byteAt(0);
  std::size_t length = 1;
  if (first >= 0x80) {
    if (first < 0xC2 || first > 0xF4) return std::nullopt;
    length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  }
  if (length > utf8.size()) return std::nullopt;
  char32_t codePoint = length == 1 ? first : first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if (byteAt(i) >> 6U != 2) return std::nullopt;
    codePoint = codePoint << 6U | (byteAt(i) & 0x3FU);
  }
  utf8.remove_prefix(length);
  return codePoint;
}

[[nodiscard]] std::string ToUtf8(std::string_view value);

/// A text in UTF-8 in the code page; nothing when it is no UTF-8 or has a character that the code
/// page lacks.
[[nodiscard]] std::optional<std::string> FromUtf8(std::string_view utf8);

/// The same of any text: "?" stands for a character that the code page lacks, and a byte that is
/// not UTF-8 stays as it is.
[[nodiscard]] std::string FromAnyUtf8(std::string_view utf8);

/// A string literal of a UTF-8 source file, as a template argument.
template <std::size_t N>
struct Utf8Literal {
  std::array<char, N> bytes{};
  consteval Utf8Literal(const char (&literal)[N]) {  // implicit: a literal converts to it
    std::copy_n(literal, N, bytes.begin());
  }
};

template <std::size_t N>
struct EncodedLiteral {
  std::array<char, N> bytes{};
  std::size_t length = 0;
};

/// Turns UTF-8 into the code page; a character that the code page lacks stops the compilation.
template <std::size_t N>
consteval EncodedLiteral<N> Encode(const Utf8Literal<N>& literal) {
  EncodedLiteral<N> encoded;
  for (std::string_view rest(literal.bytes.data(), N - 1); !rest.empty();) {
    encoded.bytes[encoded.length++] = CharacterFor(TakeCodePoint(rest).value()).value();
  }
  return encoded;
}

template <Utf8Literal literal>
inline constexpr auto Encoded = Encode(literal);

namespace literals {

/// "¿Sí?"_ansi is the text in the program's code page, converted when the program is compiled.
template <Utf8Literal literal>
consteval std::string_view operator""_ansi() {
  return {Encoded<literal>.bytes.data(), Encoded<literal>.length};
}

}  // namespace literals
}  // namespace modFunciones
