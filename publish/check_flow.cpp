#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <unordered_map>

#include "base/text.h"
#include "publish/check_rules.h"
#include "publish/pattern.h"
#include "publish/versions.h"
#include "script/version.h"

namespace publish {
namespace {

using modFunciones::LowerCase;
using modPrincipal::Verb;

/// An action that puts a file in place, found again by the hash of its path: there may be a
/// million.
struct Put {
  std::size_t hash;
  const TakenAction* action;
};
using Puts = std::span<const Put>;

/// KILLs by their name in lower case: the first of each block, and the first that is carried out at
/// once.
using Kills = std::unordered_map<std::string, std::vector<const TakenAction*>>;

/// What all installations meet, and where to put what is found in it.
struct Flow {
  const Script& script;
  const std::vector<std::int32_t>& versions;
  const Reading& reading;
  Findings& findings;
  std::vector<Put> puts = {};  // by hash, then in script order
  Kills kills = {};

  [[nodiscard]] int NumberOf(const TakenAction& action) const {
    return script.numbers[action.line];
  }
  /// The first argument, in lower case.
  [[nodiscard]] std::string TextOf(const TakenAction& action) const {
    return LowerCase(script.lines[action.line][1]);
  }
  /// Whether it ends so.
  [[nodiscard]] bool EndsWith(const TakenAction& action, std::string_view suffix) const {
    const std::string_view text = script.lines[action.line][1];
    return text.size() >= suffix.size() &&
           modFunciones::EqualIgnoringCase(text.substr(text.size() - suffix.size()), suffix);
  }
  [[nodiscard]] const Audience& AudienceOf(const TakenAction& action) const {
    return reading.blocks[action.block].audience;
  }
};

bool PutsAFile(const TakenAction& action) { return action.command->IsDownload(); }

std::size_t HashOf(const std::string& path) { return std::hash<std::string>()(path); }

bool ByHash(const Put& a, const Put& b) { return a.hash < b.hash; }

void CollectPuts(Flow& flow) {
  flow.puts.reserve(flow.reading.actions.size());
  for (const auto& action : flow.reading.actions) {
    if (PutsAFile(action)) flow.puts.push_back({HashOf(flow.TextOf(action)), &action});
  }
  std::stable_sort(flow.puts.begin(), flow.puts.end(), ByHash);
}

Puts PutsOf(const Flow& flow, const std::string& path) {
  const auto [first, end] =
      std::equal_range(flow.puts.begin(), flow.puts.end(), Put{HashOf(path), nullptr}, ByHash);
  return {first, end};
}

/// The first that puts the file of a path in place and that somebody meets who meets another action
/// as well; null when there is none.
template <typename Condition>
const TakenAction* FirstMet(const Flow& flow, Puts puts, const std::string& path,
                            const TakenAction& other, Condition condition) {
  const auto isMet = [&](const Put& put) {
    return flow.AudienceOf(*put.action).Overlaps(flow.AudienceOf(other)) &&
           condition(*put.action) && flow.TextOf(*put.action) == path;
  };
  const auto met = std::find_if(puts.begin(), puts.end(), isMet);
  return met == puts.end() ? nullptr : met->action;
}

void FindDestinationsGivenTwice(const Flow& flow) {
  const auto any = [](const TakenAction& /*put*/) { return true; };
  const Audience everybody(0, flow.versions.size());
  Audience unmet = everybody;  // by those with the same hash
  std::size_t first = 0;       // of those
  for (std::size_t i = 1; i < flow.puts.size(); ++i) {
    if (flow.puts[i].hash != flow.puts[first].hash) {
      first = i;
      unmet = everybody;
      continue;
    }
    const TakenAction& action = *flow.puts[i].action;
    unmet.Remove(flow.AudienceOf(*flow.puts[i - 1].action));
    if (flow.AudienceOf(action).IsWithin(unmet)) continue;
    const Puts earlier = Puts(flow.puts).subspan(first, i - first);
    if (const auto* const met = FirstMet(flow, earlier, flow.TextOf(action), action, any)) {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The destination is that of line " +
                                   std::to_string(flow.NumberOf(*met)) +
                                   " as well, so that the second of them fails, and the update."});
    }
  }
}

/// A download and a backup have names of their own beside their destination.
void FindDestinationsInTheWay(const Flow& flow) {
  for (const auto& action : flow.reading.actions) {
    const bool isBackup = flow.EndsWith(action, ".bak");
    if (!PutsAFile(action) || !(isBackup || flow.EndsWith(action, ".tmp"))) continue;
    std::string path = flow.TextOf(action);
    path.resize(path.size() - 4);
    const auto writes = [&](const TakenAction& put) {
      return !isBackup || put.command->verb == Verb::Add;
    };
    if (const auto* const keeper = FirstMet(flow, PutsOf(flow, path), path, action, writes)) {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The destination is where line " +
                                   std::to_string(flow.NumberOf(*keeper)) +
                                   " keeps its download or its backup."});
    }
  }
}

void FindComponentsRegisteredTooEarly(const Flow& flow) {
  for (const auto& action : flow.reading.actions) {
    if (action.command->verb != Verb::Register) continue;
    const std::string path = flow.TextOf(action);
    const auto comesLater = [&](const TakenAction& put) {
      return action.immediate || put.line > action.line;
    };
    if (const auto* const put = FirstMet(flow, PutsOf(flow, path), path, action, comesLater)) {
      flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                               "The component is registered before line " +
                                   std::to_string(flow.NumberOf(*put)) + " puts it in place."});
    }
  }
}

/// Unless a program may have used the file meanwhile.
void FindFilesDeletedAtOnce(const Flow& flow) {
  std::vector<std::size_t> programs;  // lines that start one
  for (const auto& action : flow.reading.actions) {
    if (action.command->verb == Verb::Execute) programs.push_back(action.line);
    if (action.command->verb != Verb::Delete || action.immediate) continue;
    const std::string pattern = flow.TextOf(action);
    const auto isWasted = [&](const TakenAction& put) {
      const bool isUsed = !programs.empty() && programs.back() > put.line;
      return put.line < action.line && !isUsed && Fits(flow.TextOf(put), pattern);
    };
    const TakenAction* put = nullptr;
    if (pattern.find_first_of("*?") == std::string::npos) {
      put = FirstMet(flow, PutsOf(flow, pattern), pattern, action, isWasted);
    } else {
      const auto found = std::find_if(flow.puts.begin(), flow.puts.end(), [&](const Put& any) {
        return flow.AudienceOf(*any.action).Overlaps(flow.AudienceOf(action)) &&
               isWasted(*any.action);
      });
      if (found != flow.puts.end()) put = found->action;
    }
    if (put == nullptr) continue;
    flow.findings.push_back({Severity::Error, flow.NumberOf(action),
                             "This deletes the file that line " +
                                 std::to_string(flow.NumberOf(*put)) + " puts in place."});
  }
}

/// Whether an END stands between a VERSION line and the next.
bool IsClosed(const Script& script, std::size_t opening) {
  for (std::size_t i = opening + 1; i < script.lines.size(); ++i) {
    if (script.Is(i, Verb::End)) return true;
    if (script.Is(i, Verb::Version)) return false;
  }
  return false;
}

void FindMissingEnds(const Flow& flow) {
  if (!flow.script.Is(flow.script.lines.size() - 1, Verb::End)) {
    flow.findings.push_back({Severity::Warning, flow.script.numbers.back(),
                             "No END closes the script: something may be cut off."});
  }
  std::vector<const Block*> open;  // that have actions, and nobody has met another one since
  const Block* last = nullptr;
  for (const auto& action : flow.reading.actions) {
    const Block* const block = &flow.reading.blocks[action.block];
    if (block == last) continue;
    last = block;
    std::erase_if(open, [&](const Block* earlier) {
      if (!earlier->audience.Overlaps(block->audience)) return false;
      flow.findings.push_back(
          {Severity::Warning, flow.script.numbers[earlier->opening],
           "No END closes the block, so that installations that it is for go on "
           "to that of line " +
               std::to_string(flow.script.numbers[block->opening]) + "."});
      return true;
    });
    if (!IsClosed(flow.script, block->opening)) open.push_back(block);
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
bool IsEndedBefore(const Flow& flow, const TakenAction& action, const std::string& program) {
  Audience others = flow.AudienceOf(action);
  for (std::size_t at = 0; at < program.size() && !others.IsEmpty(); ++at) {
    const auto found = flow.kills.find(program.substr(at));
    if (found == flow.kills.end()) continue;
    const auto& kills = found->second;
    const auto later =
        std::partition_point(kills.begin(), kills.end(),
                             [&](const TakenAction* kill) { return kill->line < action.line; });
    // The nearest one is most often that of the same block.
    for (auto kill = later; kill != kills.begin() && !others.IsEmpty();) {
      others.Remove(flow.AudienceOf(**--kill));
    }
    for (auto kill = later; kill != kills.end() && !others.IsEmpty(); ++kill) {
      if ((*kill)->immediate) others.Remove(flow.AudienceOf(**kill));
    }
  }
  return others.IsEmpty();
}

void FindProgramsInUse(Flow& flow) {
  CollectKills(flow);
  for (const auto& action : flow.reading.actions) {
    if (!PutsAFile(action) || !flow.EndsWith(action, ".exe")) continue;
    const std::string path = flow.TextOf(action);
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
std::optional<std::size_t> OpeningOfUpdate(const Flow& flow, const std::string& version) {
  // What holds for a version holds for those up to the next that is told apart.
  const auto above = std::upper_bound(flow.versions.begin(), flow.versions.end(),
                                      modPrincipal::VersionToNumber(version));
  const auto end = static_cast<std::size_t>(above - flow.versions.begin());
  const Audience installed(end - 1, end);
  for (const auto& action : flow.reading.actions) {
    const Block& block = flow.reading.blocks[action.block];
    if (!action.immediate && block.audience.Overlaps(installed)) return block.opening;
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
    const auto opening = version.empty() ? std::nullopt : OpeningOfUpdate(flow, version);
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
    const auto* const command = flow.script.commands[i];
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

void CheckFlow(const Script& script, const std::vector<std::int32_t>& versions,
               const Reading& reading, const std::string& newest, Findings& findings) {
  if (!reading.failure.empty()) return;
  Flow flow = {script, versions, reading, findings};
  CollectPuts(flow);
  FindDestinationsGivenTwice(flow);
  FindDestinationsInTheWay(flow);
  FindComponentsRegisteredTooEarly(flow);
  FindFilesDeletedAtOnce(flow);
  FindMissingEnds(flow);
  FindProgramsInUse(flow);
  FindEndlessUpdates(flow, newest);
  FindIdleActions(flow);
}

}  // namespace publish
