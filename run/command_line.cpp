#include "run/command_line.h"

#include "platform/system.h"

namespace modFunciones {

std::vector<std::string> SplitArguments(std::string_view ownPath, std::string_view argumentText) {
  std::vector<std::string> elements = {std::string(ownPath)};
  bool inArgument = false;
  bool inQuotes = false;
  char previous = '\0';  // the character last appended to an element

  const auto append = [&](char character) {
    elements.back() += character;
    previous = character;
  };

  for (const char character : argumentText) {
    if (character == ' ' || character == '\t') {
      if (inQuotes) {
        append(character);
      } else {
        inArgument = false;
      }
    } else if (character == '"') {
      if (!inArgument) {
        inQuotes = true;
      } else if (previous == '\\') {
        elements.back().pop_back();
        append(character);
      } else {
        inQuotes = false;
      }
    } else {
      if (!inArgument) {
        elements.emplace_back();
        inArgument = true;
      }
      append(character);
    }
  }
  return elements;
}

std::vector<std::string> SplitCommandLine() {
  return SplitArguments(
      platform::system::ExecutableFolder() + "\\" + platform::system::ExecutableBaseName(),
      platform::system::CommandLineText());
}

}  // namespace modFunciones
