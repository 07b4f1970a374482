#include "base/text.h"

namespace modFunciones {
namespace {

using LetterCase = std::array<char, 256>;  // by byte

constexpr LetterCase MakeLetterCase(bool upper) {
  LetterCase letters{};
  for (unsigned i = 0; i < letters.size(); ++i) letters[i] = static_cast<char>(i);
  const auto pair = [&](unsigned capital, unsigned small) {
    letters[upper ? small : capital] = static_cast<char>(upper ? capital : small);
  };
  for (unsigned i = 'A'; i <= 'Z'; ++i) pair(i, i + 0x20);
  for (unsigned i = 0xC0; i <= 0xDE; ++i) {
    if (i != 0xD7) pair(i, i + 0x20);
  }
  for (const unsigned i : {0x8AU, 0x8CU, 0x8EU}) pair(i, i + 0x10);
  pair(0x9F, 0xFF);
  return letters;
}

constexpr LetterCase UpperCases = MakeLetterCase(true);
constexpr LetterCase LowerCases = MakeLetterCase(false);

std::string Mapped(std::string_view value, const LetterCase& letters) {
  std::string mapped(value);
  for (char& letter : mapped) letter = letters[static_cast<unsigned char>(letter)];
  return mapped;
}

}  // namespace

std::string UpperCase(std::string_view value) { return Mapped(value, UpperCases); }
std::string LowerCase(std::string_view value) { return Mapped(value, LowerCases); }

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char letter) { return LowerCases[static_cast<unsigned char>(letter)]; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char one, char other) {
    return one == other || lower(one) == lower(other);
  });
}

std::string ToUtf8(std::string_view value) {
  std::string converted;
  converted.reserve(value.size());
  const auto append = [&](unsigned byte) { converted += static_cast<char>(byte); };
  for (const char character : value) {
    const unsigned codePoint = CodePointOf(character);
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
  return converted;
}

std::optional<std::string> FromUtf8(std::string_view utf8) {
  std::string converted;
  while (!utf8.empty()) {
    const auto codePoint = TakeCodePoint(utf8);
    const auto character = codePoint ? CharacterFor(*codePoint) : std::nullopt;
    if (!character) return std::nullopt;
    converted += *character;
  }
  return converted;
}

std::string FromAnyUtf8(std::string_view utf8) {
  std::string converted;
  while (!utf8.empty()) {
    const char first = utf8.front();
    if (const auto codePoint = TakeCodePoint(utf8)) {
      converted += CharacterFor(*codePoint).value_or('?');
    } else {
      converted += first;
      utf8.remove_prefix(1);
    }
  }
  return converted;
}

}  // namespace modFunciones
