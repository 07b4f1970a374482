#include "publish/nearest_command.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include "script/commands.h"

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

std::string_view NearestCommand(std::string_view word) {
  std::string_view nearest;
  std::size_t least = word.size() / 2 + 1;
  for (const auto& command : modPrincipal::Commands()) {
    const std::size_t distance = Distance(word, command.word);
    if (distance < least) {
      least = distance;
      nearest = command.word;
    }
  }
  return nearest;
}

}  // namespace publish
