#include "platform/text.h"

namespace platform::text {
namespace {

struct LetterPair {
  unsigned char upper;
  unsigned char lower;
};

// The pairs that stand apart by another distance than 0x20.
constexpr std::array<LetterPair, 4> OddPairs = {
    {{0x8A, 0x9A}, {0x8C, 0x9C}, {0x8E, 0x9E}, {0x9F, 0xFF}}};

unsigned char UpperCaseOf(unsigned char letter) {
  for (const auto& pair : OddPairs) {
    if (letter == pair.lower) return pair.upper;
  }
  const bool hasUpperCase =
      (letter >= 'a' && letter <= 'z') || (letter >= 0xE0 && letter <= 0xFE && letter != 0xF7);
  return hasUpperCase ? static_cast<unsigned char>(letter - 0x20) : letter;
}

unsigned char LowerCaseOf(unsigned char letter) {
  for (const auto& pair : OddPairs) {
    if (letter == pair.upper) return pair.lower;
  }
  const bool hasLowerCase =
      (letter >= 'A' && letter <= 'Z') || (letter >= 0xC0 && letter <= 0xDE && letter != 0xD7);
  return hasLowerCase ? static_cast<unsigned char>(letter + 0x20) : letter;
}

std::string Mapped(std::string_view value, unsigned char (*map)(unsigned char)) {
  std::string mapped(value);
  for (char& letter : mapped) {
    letter = static_cast<char>(map(static_cast<unsigned char>(letter)));
  }
  return mapped;
}

}  // namespace

std::string UpperCase(std::string_view value) { return Mapped(value, UpperCaseOf); }
std::string LowerCase(std::string_view value) { return Mapped(value, LowerCaseOf); }

}  // namespace platform::text
