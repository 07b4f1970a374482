#pragma once

// Text of the whole program: std::string, one byte a character, code page Windows-1252. All 256
// byte values are kept apart, so binary content passes through text unharmed.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace platform::text {

/// Unicode code points of the bytes 0x80 to 0x9F; every other byte is its own code point. The five
/// bytes that the code page leaves free stand for the control characters of the same value.
inline constexpr std::array<char16_t, 32> CodePointsFrom0x80 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Upper-case and lower-case forms of a text, accented letters included; the length is kept.
[[nodiscard]] std::string UpperCase(std::string_view value);
[[nodiscard]] std::string LowerCase(std::string_view value);

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
  for (std::size_t i = 0; i + 1 < N;) {
    const auto byteAt = [&](std::size_t k) {
      return static_cast<unsigned>(static_cast<unsigned char>(literal.bytes[k]));
    };
    unsigned codePoint = byteAt(i);
    std::size_t count = 1;
    if (codePoint >= 0xE0) {
      codePoint =
          (codePoint & 0x0FU) << 12U | (byteAt(i + 1) & 0x3FU) << 6U | (byteAt(i + 2) & 0x3FU);
      count = 3;
    } else if (codePoint >= 0x80) {
      codePoint = (codePoint & 0x1FU) << 6U | (byteAt(i + 1) & 0x3FU);
      count = 2;
    }
    if (codePoint >= 0x80 && (codePoint < 0xA0 || codePoint > 0xFF)) {
      const auto found = std::find(CodePointsFrom0x80.begin(), CodePointsFrom0x80.end(), codePoint);
      if (found == CodePointsFrom0x80.end()) throw "not a character of Windows-1252";
      codePoint = 0x80U + static_cast<unsigned>(found - CodePointsFrom0x80.begin());
    }
    encoded.bytes[encoded.length++] = static_cast<char>(codePoint);
    i += count;
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
}  // namespace platform::text
