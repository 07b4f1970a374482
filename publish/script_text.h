#pragma once

// A script as its author sees it: with line numbers.

#include <cstddef>
#include <string>
#include <vector>

#include "script/reader.h"

namespace publish {

using modPrincipal::Fields;

struct Script {
  std::string text;           // as it came, byte by byte
  std::vector<Fields> lines;  // the significant ones; the header is element 0
  std::vector<int> numbers;   // theirs in the text, from 1 on
  std::vector<const modPrincipal::Command*> commands;  // theirs; null for a word that is none

  [[nodiscard]] bool Is(std::size_t line, modPrincipal::Verb verb) const;
};

/// Cuts a text as the program does.
[[nodiscard]] Script CutWithNumbers(std::string text);

/// Whether a path that DELETE takes, in lower case, names the updater, which runs and stays.
[[nodiscard]] bool DeletesUpdater(const std::string& lowerPath);

/// Field number index, or the empty text when the line ends before it.
[[nodiscard]] const std::string& FieldAt(const Fields& fields, std::size_t index);

}  // namespace publish
