#include "publish/check_rules.h"

#include <algorithm>
#include <map>
#include <set>

#include "base/text.h"
#include "publish/reading.h"
#include "publish/versions.h"
#include "publish/vocabulary.h"

namespace publish {
namespace {

using modFunciones::LowerCase;

/// One reading of the script and where to put what is found in it.
struct Run {
  const Script& script;
  const Reading& reading;
  Findings& findings;

  [[nodiscard]] const ScriptLine& LineOf(const TakenAction& action) const {
    return script.lines[action.line];
  }
};

bool PutsAFile(const ScriptLine& line) {
  const std::string word = CommandWord(line.fields);
  return word == "ADD" || word == "UPDATE";
}

std::string FileNameOf(const std::string& path) { return path.substr(path.find_last_of('\\') + 1); }

void FindDestinationsGivenTwice(const Run& run) {
  std::map<std::string, int> seen;  // line by destination
  for (const auto& action : run.reading.actions) {
    const ScriptLine& line = run.LineOf(action);
    if (!PutsAFile(line)) continue;
    const auto [first, isNew] = seen.insert({LowerCase(line.fields[1]), line.number});
    if (isNew) continue;
    run.findings.push_back({Severity::Error, line.number,
                            "The destination is that of line " + std::to_string(first->second) +
                                " as well, so that the second of them fails, and the update."});
  }
}

/// A download and a backup have names of their own beside their destination.
void FindDestinationsInTheWay(const Run& run) {
  std::map<std::string, int> companions;  // line by path
  for (const auto& action : run.reading.actions) {
    const ScriptLine& line = run.LineOf(action);
    if (!PutsAFile(line)) continue;
    const std::string path = LowerCase(line.fields[1]);
    companions.insert({path + ".tmp", line.number});
    if (CommandWord(line.fields) == "ADD") companions.insert({path + ".bak", line.number});
  }
  for (const auto& action : run.reading.actions) {
    const ScriptLine& line = run.LineOf(action);
    const auto companion = companions.find(LowerCase(line.fields[1]));
    if (!PutsAFile(line) || companion == companions.end()) continue;
    run.findings.push_back({Severity::Error, line.number,
                            "The destination is where line " + std::to_string(companion->second) +
                                " keeps its download or its backup."});
  }
}

/// True when an earlier action, or one that is carried out before all others, ends the program.
bool IsEndedBefore(const Run& run, const TakenAction& action, const std::string& program) {
  const auto ends = [&](const TakenAction& other) {
    const Fields& fields = run.LineOf(other).fields;
    const bool isEarlier = other.immediate || other.line < action.line;
    return isEarlier && CommandWord(fields) == "KILL" && !fields[1].empty() &&
           program.ends_with(LowerCase(fields[1]));
  };
  return std::any_of(run.reading.actions.begin(), run.reading.actions.end(), ends);
}

void FindProgramsInUse(const Run& run) {
  for (const auto& action : run.reading.actions) {
    const ScriptLine& line = run.LineOf(action);
    const std::string path = LowerCase(line.fields[1]);
    const std::string program = FileNameOf(path);
    if (!PutsAFile(line) || !program.ends_with(".exe")) continue;
    if (path == "$apppath\\kestrane.exe") {
      run.findings.push_back({Severity::Error, line.number,
                              "The updater cannot replace itself so: the header is for that."});
    } else if (!IsEndedBefore(run, action, program)) {
      run.findings.push_back({Severity::Warning, line.number,
                              "No KILL precedes that ends " + program +
                                  ", and a program that runs cannot be replaced."});
    }
  }
}

/// The VERSION line of the first block that updates an installation; null when none does. What is
/// carried out at once is no update.
const ScriptLine* OpeningOfUpdate(const Script& script, const std::string& installed) {
  const Reading reading = ReadFor(script, installed, false);
  const auto recorded = std::find_if(reading.actions.begin(), reading.actions.end(),
                                     [](const TakenAction& action) { return !action.immediate; });
  if (recorded == reading.actions.end()) return nullptr;
  return &script.lines[OpeningOf(script, recorded->line)];
}

void FindEndlessUpdates(const Script& script, const std::string& newest, Findings& findings) {
  const std::string greatest = GreatestNamed(script);
  const struct {
    std::string version;
    Severity severity;
    std::string text;
  } cases[] = {
      {newest, Severity::Error,
       "The block holds for the newest release as well, which would be updated at every start."},
      {LatestVersion, Severity::Error,
       "The block holds for every later version, so that no update ever is the last one."},
      {newest.empty() ? greatest : "", Severity::Warning,
       "The block holds for " + greatest +
           " itself: if that is the newest release, it is updated at every start."},
  };
  for (const auto& [version, severity, text] : cases) {
    const ScriptLine* const opening = version.empty() ? nullptr : OpeningOfUpdate(script, version);
    if (opening == nullptr) continue;
    // Who names one version alone means an old one.
    const bool namesOne = opening->fields[1] == "=";
    if (severity == Severity::Warning && namesOne) continue;
    findings.push_back({severity, opening->number, text});
    return;
  }
}

/// Actions that take effect for nobody: those above every VERSION line, and those that every
/// installed version is kept from. What an unknown word switches off is told where that stands.
void FindIdleActions(const Script& script, const std::set<std::size_t>& taken, Findings& findings) {
  bool inBlock = false;
  bool isSwitchedOff = false;
  for (std::size_t i = 1; i < script.lines.size(); ++i) {
    const auto& [number, fields] = script.lines[i];
    const Command* const command = FindCommand(CommandWord(fields));
    if (command == nullptr) isSwitchedOff = true;
    if (command != nullptr && command->word == "VERSION") {
      inBlock = true;
      isSwitchedOff = false;
    }
    if (command == nullptr || !command->isAction || taken.contains(i) || isSwitchedOff) continue;
    findings.push_back(
        {Severity::Warning, number,
         inBlock ? "No installed version gets to this action: an END above it ends the reading, or "
                   "the VERSION line holds for none."
                 : "The action stands before the first VERSION line and never takes effect."});
    if (inBlock) isSwitchedOff = true;  // one finding a block
  }
}

}  // namespace

void CheckFlow(const Script& script, const std::string& newest, Findings& findings) {
  std::set<std::size_t> taken;
  for (const auto& installed : VersionsToldApart(script)) {
    const Reading reading = ReadFor(script, installed, false);
    for (const auto& action : reading.actions) taken.insert(action.line);
    const Run run = {script, reading, findings};
    FindDestinationsGivenTwice(run);
    FindDestinationsInTheWay(run);
    FindProgramsInUse(run);
  }
  FindEndlessUpdates(script, newest, findings);
  FindIdleActions(script, taken, findings);
}

}  // namespace publish
