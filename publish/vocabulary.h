#pragma once

// The words of the script format, for explanations. What a script means is never decided by them:
// that is left to the program's own parser.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace publish {

enum class Argument { Path, CommandLine, ProcessName, Other };

struct Command {
  std::string_view word;
  std::size_t leastFields;
  std::string_view form;  // how the line is written
  bool isAction;
  bool markerWorks;
  Argument first;  // what the first argument is
};

/// Null for a word that is no command.
[[nodiscard]] const Command* FindCommand(std::string_view word);

/// The command word that is nearest to a misspelt one; empty when none is near.
[[nodiscard]] std::string_view NearestCommand(std::string_view word);

[[nodiscard]] bool IsComparator(std::string_view value);

/// An argument that has to be one of certain words, in any letter case.
struct WordArgument {
  std::string_view command;
  std::size_t field;
  std::string_view meaning;
  std::span<const std::string_view> words;
  std::string_view consequence;  // of another word
  bool stopsTheAction;
};
[[nodiscard]] std::span<const WordArgument> WordArguments();

inline constexpr std::string_view Macros[] = {"$WinPath", "$WinSysPath", "$AppPath"};

}  // namespace publish
