#include "publish/vocabulary.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace publish {
namespace {

constexpr Command Commands[] = {
    {"NAME", 2, "NAME|word|...", false, false, Argument::Other},
    {"VERSION", 3, "VERSION|comparator|version", false, false, Argument::Other},
    {"END", 1, "END", false, false, Argument::Other},
    {"ADD", 3, "ADD|file|URL", true, false, Argument::Path},
    {"UPDATE", 3, "UPDATE|file|URL", true, false, Argument::Path},
    {"DELETE", 2, "DELETE|file", true, true, Argument::Path},
    {"MSG", 3, "MSG|text|icon", true, true, Argument::Other},
    {"EXECUTE", 4, "EXECUTE|command|WAIT|window", true, true, Argument::CommandLine},
    {"KILL", 2, "KILL|name", true, true, Argument::ProcessName},
    {"REGISTER", 2, "REGISTER|file", true, true, Argument::Path},
    {"UNREGISTER", 2, "UNREGISTER|file", true, true, Argument::Path},
    {"SLEEP", 2, "SLEEP|milliseconds", true, true, Argument::Other},
};

constexpr std::string_view Comparators[] = {">", "<", ">=", "<=", "="};
constexpr std::string_view MessageStyles[] = {"EXCLAMATION", "INFORMATION", "CRITICAL", "NOTHING"};
constexpr std::string_view WaitWords[] = {"WAIT", "NOWAIT"};
constexpr std::string_view WindowStyles[] = {"HIDE", "NORMAL",   "NORMALFOCUS",
                                             "MIN",  "MINFOCUS", "MAX"};

constexpr WordArgument WordTable[] = {
    {"MSG", 2, "icon", MessageStyles, "the message gets none, or that of the MSG before it", false},
    {"EXECUTE", 2, "wait word", WaitWords, "the program is not started", true},
    {"EXECUTE", 3, "window", WindowStyles,
     "the program gets none, or that of the EXECUTE before it", false},
};

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

const Command* FindCommand(std::string_view word) {
  const auto found = std::find_if(std::begin(Commands), std::end(Commands),
                                  [&](const Command& command) { return command.word == word; });
  return found == std::end(Commands) ? nullptr : found;
}

std::string_view NearestCommand(std::string_view word) {
  std::string_view nearest;
  std::size_t least = word.size() / 2 + 1;
  for (const auto& command : Commands) {
    const std::size_t distance = Distance(word, command.word);
    if (distance < least) {
      least = distance;
      nearest = command.word;
    }
  }
  return nearest;
}

bool IsComparator(std::string_view value) {
  return std::find(std::begin(Comparators), std::end(Comparators), value) != std::end(Comparators);
}

std::span<const WordArgument> WordArguments() { return WordTable; }

}  // namespace publish
