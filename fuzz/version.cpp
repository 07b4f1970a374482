// A version in each half: their numbers compare as their parts do.

#include "script/version.h"

#include <array>
#include <optional>
#include <regex>

#include "fuzz/fuzz.h"

namespace {

/// How long the major part is written, and the three parts; nothing when the text is no version.
std::optional<std::array<int, 4>> Parts(const std::string& version) {
  static const std::regex form(R"(^([0-9]{1,3})($|\.([0-9]{0,3})($|\.([0-9]{0,3})($|\.))))");
  std::smatch match;
  if (!std::regex_search(version, match, form)) return std::nullopt;
  const auto number = [&](std::size_t i) { return std::stoi('0' + match.str(i)); };
  return {{static_cast<int>(match.length(1)), number(1), number(3), number(5)}};
}

}  // namespace

void Fuzz(const std::string& firstLine, const std::string& rest) {
  const auto number = modPrincipal::VersionToNumber(firstLine);
  const auto other = modPrincipal::VersionToNumber(rest);
  Require(number == 0 || (number >= 10'000'000 && number <= 1'999'999'999));
  Require((number == 0) == !Parts(firstLine));
  Require((number < other) == (Parts(firstLine) < Parts(rest)));
  Require((number == other) == (Parts(firstLine) == Parts(rest)));
}
