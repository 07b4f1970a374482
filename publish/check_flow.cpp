#include <algorithm>
#include <optional>
#include <unordered_map>

#include "base/text.h"
#include "publish/audience.h"
#include "publish/check_rules.h"
#include "publish/versions.h"
#include "script/version.h"

namespace publish {
namespace {

using modFunciones::LowerCase;
using modPrincipal::Effect;
using modPrincipal::Verb;

using Actions = std::vector<const SharedAction*>;

/// Actions by their path or name in lower case, in script order, the first of each block.
using ActionsByText = std::unordered_map<std::string, Actions>;

/// What all installations meet, and where to put what is found in it.
struct Flow {
  const Script& script;
  const ReadingOfAll& reading;
  Findings& findings;
  ActionsByText puts = {};   // ADD and UPDATE
  ActionsByText kills = {};  // and the first of each block that is carried out at once

  [[nodiscard]] int NumberOf(const SharedAction& action) const {
    return script.numbers[action.line];
  }
  /// The first argument.
  [[nodiscard]] std::string TextOf(const SharedAction& action) const {
    return LowerCase(script.lines[action.line][1]);
  }
  [[nodiscard]] const Audience& AudienceOf(const SharedAction& action) const {
    return reading.blocks[action.block].audience;
  }
};

bool PutsAFile(const SharedAction& action) { return action.command->effect == Effect::Download; }

/// The first of some actions that somebody meets who meets another one as well; null when there is
/// none.
template <typename Condition>
const SharedAction* FirstMet(const Flow& flow, const Actions& actions, const SharedAction& other,
                             Condition condition) {
  const auto isMet = [&](const SharedAction* action) {
    return condition(*action) && flow.AudienceOf(*action).Overlaps(flow.AudienceOf(other));
  };
  const auto met = std::find_if(actions.begin(), actions.end(), isMet);
  return met == actions.end() ? nullptr : *met;
}

void FindDestinationsGivenTwice(Flow& flow) {
  const auto any = [](const SharedAction& /*put*/) { return true; };
  flow.puts.reserve(flow.reading.actions.size());
  for (const auto& action : flow.reading.actions) {
    if (!PutsAFile(action)) continue;
    Actions& puts = flow.puts[flow.TextOf(action)];
    if (const SharedAction* const first = FirstMet(flow, puts, action, any)) {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The destination is that of line " +
                                   std::to_string(flow.NumberOf(*first)) +
                                   " as well, so that the second of them fails, and the update."});
    }
    if (puts.empty() || puts.back()->block != action.block) puts.push_back(&action);
  }
}

/// A download and a backup have names of their own beside their destination.
void FindDestinationsInTheWay(const Flow& flow) {
  for (const auto& action : flow.reading.actions) {
    if (!PutsAFile(action)) continue;
    const std::string path = flow.TextOf(action);
    const bool isBackup = path.ends_with(".bak");
    if (!isBackup && !path.ends_with(".tmp")) continue;
    const auto puts = flow.puts.find(path.substr(0, path.size() - 4));
    if (puts == flow.puts.end()) continue;
    const auto writes = [&](const SharedAction& put) {
      return !isBackup || put.command->verb == Verb::Add;
    };
    if (const SharedAction* const keeper = FirstMet(flow, puts->second, action, writes)) {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The destination is where line " +
                                   std::to_string(flow.NumberOf(*keeper)) +
                                   " keeps its download or its backup."});
    }
  }
}

void CollectKills(Flow& flow) {
  for (const auto& action : flow.reading.actions) {
    if (action.command->verb != Verb::Kill) continue;
    auto& kills = flow.kills[flow.TextOf(action)];
    const bool isNew = kills.empty() || kills.back()->block != action.block ||
                       (action.immediate && !kills.back()->immediate);
    if (isNew) kills.push_back(&action);
  }
}

/// True when for everybody an earlier action, or one that is carried out before all others, ends
/// the program.
bool IsEndedBefore(const Flow& flow, const SharedAction& action, const std::string& program) {
  Audience others = flow.AudienceOf(action);
  for (std::size_t at = 0; at < program.size() && !others.IsEmpty(); ++at) {
    const auto found = flow.kills.find(program.substr(at));
    if (found == flow.kills.end()) continue;
    for (const SharedAction* const kill : found->second) {
      const bool isEarlier = kill->immediate || kill->line < action.line;
      const Audience& reached = flow.AudienceOf(*kill);
      if (isEarlier && reached.Overlaps(others)) others = others.Without(reached);
    }
  }
  return others.IsEmpty();
}

void FindProgramsInUse(Flow& flow) {
  CollectKills(flow);
  for (const auto& action : flow.reading.actions) {
    if (!PutsAFile(action)) continue;
    const std::string path = flow.TextOf(action);
    if (!path.ends_with(".exe")) continue;
    const std::string program = path.substr(path.find_last_of('\\') + 1);
    if (path == "$apppath\\kestrane.exe") {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The updater cannot replace itself so: the header is for that."});
    } else if (!IsEndedBefore(flow, action, program)) {
      flow.findings.push_back({Severity::Warning, flow.NumberOf(action),
                               "No KILL precedes that ends " + program +
                                   ", and a program that runs cannot be replaced."});
    }
  }
}

/// Index of the VERSION line of the first block that updates an installation; nothing when none
/// does. What is carried out at once is no update.
std::optional<std::size_t> OpeningOfUpdate(const ReadingOfAll& reading,
                                           const std::string& version) {
  // What holds for a version holds for those up to the next that is told apart.
  const auto above = std::upper_bound(reading.versions.begin(), reading.versions.end(),
                                      modPrincipal::VersionToNumber(version));
  const auto end = static_cast<std::size_t>(above - reading.versions.begin());
  const Audience installed(end - 1, end);
  for (const auto& action : reading.actions) {
    const auto& [opening, audience] = reading.blocks[action.block];
    if (!action.immediate && audience.Overlaps(installed)) return opening;
  }
  return std::nullopt;
}

void FindEndlessUpdates(const Flow& flow, const std::string& newest) {
  const std::string greatest = GreatestNamed(flow.script);
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
    const auto opening = version.empty() ? std::nullopt : OpeningOfUpdate(flow.reading, version);
    if (!opening) continue;
    // Who names one version alone means an old one.
    const bool namesOne = flow.script.lines[*opening][1] == "=";
    if (severity == Severity::Warning && namesOne) continue;
    flow.findings.push_back({severity, flow.script.numbers[*opening], text});
    return;
  }
}

/// Actions that take effect for nobody: those above every VERSION line, and those that every
/// installed version is kept from. What an unknown word switches off is told where that stands.
void FindIdleActions(const Flow& flow) {
  auto taken = flow.reading.actions.begin();
  bool inBlock = false;
  bool isSwitchedOff = false;
  for (std::size_t i = 1; i < flow.script.lines.size(); ++i) {
    const bool isTaken = taken != flow.reading.actions.end() && taken->line == i;
    if (isTaken) ++taken;
    const auto* const command = CommandOf(flow.script.lines[i]);
    if (command == nullptr) isSwitchedOff = true;
    if (command != nullptr && command->verb == Verb::Version) {
      inBlock = true;
      isSwitchedOff = false;
    }
    if (command == nullptr || !command->IsAction() || isTaken || isSwitchedOff) continue;
    flow.findings.push_back(
        {Severity::Warning, flow.script.numbers[i],
         inBlock ? "No installed version gets to this action: an END above it ends the reading, or "
                   "the VERSION line holds for none."
                 : "The action stands before the first VERSION line and never takes effect."});
    if (inBlock) isSwitchedOff = true;  // one finding a block
  }
}

}  // namespace

void CheckFlow(const Script& script, const ReadingOfAll& reading, const std::string& newest,
               Findings& findings) {
  Flow flow = {script, reading, findings};
  FindDestinationsGivenTwice(flow);
  FindDestinationsInTheWay(flow);
  FindProgramsInUse(flow);
  FindEndlessUpdates(flow, newest);
  FindIdleActions(flow);
}

}  // namespace publish
