#pragma once

// A script as its author sees it: with line numbers.

#include <cstddef>
#include <string>
#include <vector>

namespace publish {

using Fields = std::vector<std::string>;

/// A significant line: its number in the text, from 1 on, and its fields.
struct ScriptLine {
  int number = 0;
  Fields fields;
};

struct Script {
  std::string text;               // as it came, byte by byte
  std::vector<ScriptLine> lines;  // the header is element 0
};

/// Cuts a text as the program does.
[[nodiscard]] Script CutWithNumbers(std::string text);

/// The command word of a line as the program compares it: in capitals, without one marker.
[[nodiscard]] std::string CommandWord(const Fields& fields);

/// True when the line begins with the immediate marker.
[[nodiscard]] bool HasMarker(const Fields& fields);

/// Index of the VERSION line that opened the block of a line; 0 when none did.
[[nodiscard]] std::size_t OpeningOf(const Script& script, std::size_t line);

/// Field number index, or the empty text when the line ends before it.
[[nodiscard]] std::string FieldAt(const Fields& fields, std::size_t index);

}  // namespace publish
