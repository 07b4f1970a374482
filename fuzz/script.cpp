// The installed version, and a script: from its bytes to the table.

#include <sstream>

#include "base/arrays.h"
#include "base/text.h"
#include "fuzz/fuzz.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/parser.h"

namespace {

using namespace modPrincipal;

std::string SignificantLines(std::string script) {
  std::erase(script, '\r');
  std::istringstream rest(script);
  std::string lines;
  for (std::string line; std::getline(rest, line);) {
    if (!line.empty() && line[0] != '#') lines += line + '\n';
  }
  return lines;
}

/// A copy of the lines is parsed: the parser shortens them.
std::string Parse(std::vector<std::vector<std::string>> lines) {
  ResetActionTable();
  ResetScript();
  return ParseUpdateScript(lines);
}

/// The rows as text, a line each.
std::string Table() {
  const std::size_t count = ActionCommand.size();
  Require(ActionArg1.size() == count && ActionArg2.size() == count && ActionArg3.size() == count &&
          ActionSize.size() == count);
  std::string table;
  for (std::size_t i = 0; i < count; ++i) {
    const bool isDownload = IsDownload(ActionCommand[i]);
    Require(ActionSize[i] == 0 || (isDownload && ActionSize[i] == 200 && !ActionArg2[i].empty()));
    table += ActionCommand[i] + '|' + ActionArg1[i] + '|' + ActionArg2[i] + '|' + ActionArg3[i] +
             '|' + std::to_string(ActionSize[i]) + '\n';
  }
  return table;
}

}  // namespace

void Fuzz(const std::string& firstLine, const std::string& rest) {
  AppVersion = firstLine;
  auto lines = CutScript(rest);
  std::string text;
  for (const auto& line : lines) text += modFunciones::Join(line, "|") + '\n';
  Require(text == SignificantLines(rest));

  const std::string outcome = Parse(lines);
  const std::string table = Table();
  Require(table.empty() || modFunciones::UpperCase(text).find("VERSION") != std::string::npos);
  if (outcome != ScriptNotUnderstood) {
    Require(lines.size() >= 4 && NewUpdaterVersion != 0 && !NewUpdaterUrl.empty());
    Require(outcome.empty() || (outcome == FilesNotAvailable && ActionSize.back() == 0));
  }

  // A last line changes nothing of what was read before it.
  if (lines.size() <= 4) return;
  lines.pop_back();
  const std::string outcomeBefore = Parse(lines);
  Require(outcomeBefore.empty() || outcomeBefore == outcome);
  Require(table.starts_with(Table()));
}
