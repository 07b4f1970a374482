#include "publish/words.h"

#include <algorithm>

namespace publish {

std::string Number(std::uint64_t number, const char* unit) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
  return digits + " " + unit + (number == 1 ? "" : "s");
}

std::string Some(const std::vector<std::string>& names) {
  constexpr std::size_t Most = 5;
  const std::size_t shown = std::min(names.size(), Most);
  std::string text;
  for (std::size_t i = 0; i < shown; ++i) text += (i == 0 ? "" : ", ") + names[i];
  const std::size_t more = names.size() - shown;
  return text + (more > 0 ? " and " + std::to_string(more) + " more" : "");
}

}  // namespace publish
