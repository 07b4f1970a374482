// Prints the dictionary of the script's fuzzer: the words of the script, and what stands around
// them.

#include <cstdio>
#include <string>

#include "script/commands.h"

namespace {

void Print(std::string_view entry) {
  std::printf("\"%.*s\"\n", static_cast<int>(entry.size()), entry.data());
}

}  // namespace

int main() {
  for (const auto& command : modPrincipal::Commands()) {
    Print(std::string(command.word) + (command.Arguments().empty() ? "" : "|"));
    for (const auto& argument : command.Arguments()) {
      for (const auto& [word, value] : argument.words) Print(word);
    }
  }
  for (const auto& comparator : modPrincipal::Comparators()) {
    Print(std::string(comparator.word) + '|');
  }
  for (const auto& macro : modPrincipal::Macros) Print(macro);
  for (const char* text : {"http://", "\\x0d\\x0a!", "\\x0a#"}) Print(text);
}
