#include "publish/words.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace publish {
namespace {

/// The number of letters to put in, take out or replace.
std::size_t Distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[to.size()];
}

}  // namespace

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

std::string NearestAmong(const std::vector<std::string>& words, std::string_view misspelt) {
  std::string nearest;
  std::size_t least = misspelt.size() / 2 + 1;
  for (const auto& word : words) {
    const std::size_t distance = Distance(misspelt, word);
    if (distance >= least) continue;
    least = distance;
    nearest = word;
  }
  return nearest.empty() ? "" : " (" + nearest + " is the nearest)";
}

}  // namespace publish
