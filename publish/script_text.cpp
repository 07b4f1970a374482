#include "publish/script_text.h"

#include "base/arrays.h"
#include "base/text.h"
#include "script/parser.h"

namespace publish {

Script CutWithNumbers(std::string text) {
  Script script = {std::move(text), {}};
  int number = 0;
  for (const auto& line : modFunciones::Split(script.text, '\n')) {
    ++number;
    for (auto& fields : modPrincipal::CutScript(line)) {  // one, unless the line does not count
      script.lines.push_back({number, std::move(fields)});
    }
  }
  return script;
}

std::string CommandWord(const Fields& fields) {
  return modFunciones::UpperCase(FieldAt(fields, 0).substr(HasMarker(fields) ? 1 : 0));
}

bool HasMarker(const Fields& fields) { return FieldAt(fields, 0).starts_with('!'); }

std::size_t OpeningOf(const Script& script, std::size_t line) {
  while (line > 0 && CommandWord(script.lines[line].fields) != "VERSION") --line;
  return line;
}

std::string FieldAt(const Fields& fields, std::size_t index) {
  return index < fields.size() ? fields[index] : "";
}

}  // namespace publish
