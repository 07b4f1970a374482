#include "publish/script_text.h"

#include <utility>

#include "publish/pattern.h"

namespace publish {

Script CutWithNumbers(std::string text) {
  Script script;
  script.lines = modPrincipal::CutScript(text, &script.numbers);
  script.text = std::move(text);
  script.commands.reserve(script.lines.size());
  for (const auto& line : script.lines) {
    script.commands.push_back(modPrincipal::CommandOf(line));
  }
  return script;
}

bool Script::Is(std::size_t line, modPrincipal::Verb verb) const {
  return commands[line] != nullptr && commands[line]->verb == verb;
}

bool DeletesUpdater(const std::string& lowerPath) {
  return Fits("$apppath\\kestrane.exe", lowerPath);
}

const std::string& FieldAt(const Fields& fields, std::size_t index) {
  static const std::string none;
  return index < fields.size() ? fields[index] : none;
}

}  // namespace publish
