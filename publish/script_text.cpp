#include "publish/script_text.h"

#include <utility>

#include "publish/pattern.h"

namespace publish {

Script CutWithNumbers(std::string text) {
  Script script;
  script.lines = modPrincipal::CutScript(text, &script.numbers);
  script.text = std::move(text);
  return script;
}

const modPrincipal::Command* CommandOf(const Fields& line) {
  return modPrincipal::FindCommand(modPrincipal::CommandWord(line));
}

bool Is(const Fields& line, modPrincipal::Verb verb) {
  const auto* const command = CommandOf(line);
  return command != nullptr && command->verb == verb;
}

bool DeletesUpdater(const std::string& lowerPath) {
  return Fits("$apppath\\kestrane.exe", lowerPath);
}

const std::string& FieldAt(const Fields& fields, std::size_t index) {
  static const std::string none;
  return index < fields.size() ? fields[index] : none;
}

}  // namespace publish
