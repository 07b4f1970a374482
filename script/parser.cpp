#include "script/parser.h"

#include <algorithm>

#include "base/arrays.h"
#include "base/text.h"
#include "install/action_executor.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/version.h"
#include "transfer/availability.h"

namespace modPrincipal {

std::vector<std::vector<std::string>> ScriptLines;
std::int32_t NewUpdaterVersion = 0;
std::string NewUpdaterUrl;
std::string AppDisplayName;

namespace {

using Fields = std::vector<std::string>;
using modFunciones::ElementCount;

constexpr std::int32_t LeastLines = 4;

/// What a line makes of the reading: it goes on, ends well, or ends with a failure.
enum class Reading { GoesOn, Ended, NotUnderstood, NotAvailable };

/// An action command: the fields it needs, and whether its marker is looked at.
struct ActionForm {
  std::string_view command;
  std::int32_t leastFields;
  bool mayBeImmediate;
};

constexpr ActionForm ActionForms[] = {
    {"ADD", 3, false},     {"UPDATE", 3, false},    {"DELETE", 2, true},
    {"MSG", 3, true},      {"EXECUTE", 4, true},    {"KILL", 2, true},
    {"REGISTER", 2, true}, {"UNREGISTER", 2, true}, {"SLEEP", 2, true},
};

bool ReadHeader(const Fields& header) {
  if (ElementCount(header) != 2) return false;
  NewUpdaterVersion = VersionToNumber(header[0]);
  if (NewUpdaterVersion == 0) return false;
  NewUpdaterUrl = header[1];
  return !NewUpdaterUrl.empty();
}

Reading ReadName(const Fields& line) {
  if (ElementCount(line) < 2) return Reading::NotUnderstood;
  const Fields words = modFunciones::ArraySlice(line, 1);
  if (modFunciones::Join(words, "").empty()) return Reading::NotUnderstood;
  AppDisplayName = modFunciones::Join(words, " ");
  return Reading::GoesOn;
}

Reading ReadVersion(const Fields& line, bool& conditionActive) {
  if (ElementCount(line) != 3) return Reading::NotUnderstood;
  const std::string& comparator = line[1];
  const bool known = comparator == ">" || comparator == "<" || comparator == ">=" ||
                     comparator == "<=" || comparator == "=";
  if (!known) return Reading::NotUnderstood;
  const std::int32_t given = VersionToNumber(line[2]);
  if (given == 0) return Reading::NotUnderstood;

  const std::int32_t installed = VersionToNumber(AppVersion);
  if (comparator == ">") conditionActive = installed > given;
  if (comparator == "<") conditionActive = installed < given;
  if (comparator == ">=") conditionActive = installed >= given;
  if (comparator == "<=") conditionActive = installed <= given;
  if (comparator == "=") conditionActive = installed == given;
  return Reading::GoesOn;
}

Reading ReadAction(const ActionForm& form, const Fields& line, bool conditionActive, bool runNow) {
  if (ElementCount(line) < form.leastFields) return Reading::NotUnderstood;
  if (!conditionActive) return Reading::GoesOn;

  std::string arg2 = form.leastFields > 2 ? line[2] : "";
  std::string arg3 = form.leastFields > 3 ? line[3] : "";
  if (form.command == "MSG") arg2.swap(arg3);  // the style goes third

  const std::string command(form.command);
  if (runNow && form.mayBeImmediate) {
    RunAction(command, line[1], arg2, arg3);
    return Reading::GoesOn;
  }
  // Only the check of a download can fail.
  return AddAction(command, line[1], arg2, arg3) ? Reading::GoesOn : Reading::NotAvailable;
}

bool TakeImmediateMarker(std::string& commandWord) {
  if (!commandWord.starts_with('!')) return false;
  commandWord.erase(0, 1);
  return true;
}

Reading ReadLine(Fields& line, bool& conditionActive) {
  const bool runNow = TakeImmediateMarker(line[0]);
  const std::string command = modFunciones::UpperCase(line[0]);
  if (command == "NAME") return ReadName(line);
  if (command == "VERSION") return ReadVersion(line, conditionActive);
  if (command == "END") return conditionActive ? Reading::Ended : Reading::GoesOn;
  for (const auto& form : ActionForms) {
    if (command == form.command) return ReadAction(form, line, conditionActive, runNow);
  }
  conditionActive = false;
  return Reading::GoesOn;
}

}  // namespace

void ResetScript() {
  ScriptLines.clear();
  NewUpdaterVersion = 0;
  NewUpdaterUrl.clear();
  AppDisplayName.clear();
}

std::vector<Fields> CutScript(std::string_view script) {
  std::string text(script);
  std::erase(text, '\r');
  std::vector<Fields> significant;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.empty() || line.starts_with('#')) continue;
    significant.push_back(modFunciones::Split(line, '|'));
  }
  return significant;
}

std::string ParseUpdateScript(std::vector<Fields>& lines) {
  const std::int32_t count = ElementCount(lines);
  if (count < LeastLines || !ReadHeader(lines[0])) return std::string(ScriptNotUnderstood);

  bool conditionActive = false;
  for (std::int32_t i = 1; i < count; ++i) {
    switch (ReadLine(lines[static_cast<std::size_t>(i)], conditionActive)) {
      case Reading::GoesOn:
        break;
      case Reading::Ended:
        return "";
      case Reading::NotUnderstood:
        return std::string(ScriptNotUnderstood);
      case Reading::NotAvailable:
        return std::string(FilesNotAvailable);
    }
  }
  return "";
}

}  // namespace modPrincipal
