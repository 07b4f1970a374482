#include "publish/reading.h"

#include <string_view>

#include "install/action_executor.h"
#include "platform/window.h"
#include "publish/console.h"
#include "publish/vocabulary.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/parser.h"

namespace {

std::vector<std::string> immediateActions;  // first arguments

}  // namespace

// What the parser calls, and what stands in its place here.

namespace modPrincipal {

std::string RunAction(std::string_view /*command*/, const std::string& arg1,
                      const std::string& /*arg2*/, const std::string& /*arg3*/) {
  immediateActions.push_back(arg1);
  return "";
}

}  // namespace modPrincipal

namespace platform::window {

void ProcessPendingEvents() { publish::ShowProgress(modPrincipal::ActionCommand.size()); }
void ProcessPendingEventsInLoop() { ProcessPendingEvents(); }

}  // namespace platform::window

namespace publish {
namespace {

/// The fields for the parser: the first argument of an action, which it only hands on, becomes the
/// index of the line, so that the line is known again where the action turns up.
Fields Labelled(const ScriptLine& line, std::size_t index, bool probe) {
  Fields fields = line.fields;
  const Command* const command = FindCommand(CommandWord(fields));
  if (index == 0 || command == nullptr || !command->isAction) return fields;
  if (fields.size() > 1) fields[1] = std::to_string(index);
  const bool hasUrl = command->word == "ADD" || command->word == "UPDATE";
  if (hasUrl && !probe && fields.size() > 2) fields[2].clear();  // not asked for
  return fields;
}

std::string Parse(std::vector<Fields>& lines, const std::string& installed) {
  immediateActions.clear();
  modPrincipal::ResetActionTable();
  modPrincipal::ResetScript();
  modPrincipal::AppVersion = installed;
  return modPrincipal::ParseUpdateScript(lines);
}

}  // namespace

Reading ReadFor(const Script& script, const std::string& installed, bool probe) {
  std::vector<Fields> lines;
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    lines.push_back(Labelled(script.lines[i], i, probe));
  }
  Reading reading;
  reading.failure = Parse(lines, installed);
  reading.name = modPrincipal::AppDisplayName;
  reading.offersUpdater = modPrincipal::NewUpdaterVersion > 0;
  for (const auto& label : immediateActions) reading.actions.push_back({std::stoul(label), true});
  // Of a refused script no row is carried out; the last one may be what it is refused for.
  const bool isMissing = reading.failure == modPrincipal::FilesNotAvailable;
  const std::size_t rows = modPrincipal::ActionArg1.size();
  std::size_t row = reading.failure.empty() ? 0 : rows - (isMissing ? 1 : 0);
  for (; row < rows; ++row) {
    reading.actions.push_back({std::stoul(modPrincipal::ActionArg1[row]), false,
                               modPrincipal::ActionSize[row], isMissing});
  }
  return reading;
}

bool IsRefused(const Fields& line, bool isHeader) {
  const Fields end = {"END"};
  std::vector<Fields> lines = {isHeader ? line : Fields{"1.0.0", "x"}, isHeader ? end : line, end,
                               end};
  return !Parse(lines, "").empty();
}

}  // namespace publish
