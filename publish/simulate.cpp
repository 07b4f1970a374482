#include "publish/simulate.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/text.h"
#include "publish/progress.h"
#include "publish/versions.h"
#include "run/messages.h"
#include "script/version.h"
#include "transfer/http_probe.h"

namespace publish {
namespace {

using modPrincipal::FilesNotAvailable;
using modPrincipal::Verb;

bool IsImmediate(const TakenAction& action) { return action.immediate; }

Reading ReadIfTaken(const Script& script, const std::vector<std::int32_t>& versions,
                    const Trust& trust) {
  if (trust.takesScript) return Read(script, versions);
  Reading refused;
  refused.failure = modPrincipal::NotSigned;
  return refused;
}

/// Asks the server for the files, as long as it has them.
void Probe(const Script& script, Reading& reading) {
  StartProgress("Asking the server", script.lines.size());
  std::size_t asked = 0;
  auto at = reading.actions.begin();
  for (; at != reading.actions.end() && reading.failure != FilesNotAvailable; ++at) {
    const std::string& url = FieldAt(script.lines[at->line], 2);
    if (!at->command->IsDownload() || url.empty()) continue;
    ShowProgress(++asked);
    const auto length = modFunciones::AvailableLength(url);
    at->size = length.value_or(0);
    if (length) continue;
    at->fate = Fate::Missing;
    reading.failure = FilesNotAvailable;
  }
  reading.actions.erase(at, reading.actions.end());
  EndProgress();
}

/// The recorded actions, as they are carried out, and what the final screen says then.
class Rehearsal {
 public:
  Rehearsal(const Script& readScript, const Trust& theirTrust, Outcome& result,
            bool isWithoutDownloads)
      : script(readScript),
        trust(theirTrust),
        outcome(result),
        nothingIsDownloaded(isWithoutDownloads) {}

  void CarryOut() {
    if (Downloads()) Installs();
  }

 private:
  [[nodiscard]] std::string ArgumentOf(const TakenAction& action) const {
    return modFunciones::LowerCase(FieldAt(script.lines[action.line], 1));
  }

  void Fail(TakenAction& action, std::string_view message) {
    action.fate = message == modPrincipal::NotGenuine ? Fate::NotGenuine : Fate::Failed;
    outcome.finalScreen = message;
  }

  /// The message that the download of an action ends with; empty when that goes well.
  [[nodiscard]] std::string_view FailureOf(const TakenAction& action) const {
    if (!action.command->IsDownload()) return "";
    const std::string& url = FieldAt(script.lines[action.line], 2);
    const bool isFile = ArgumentOf(action).find_first_of("*?<>\"") == std::string::npos;
    if (url.empty() || !isFile) return modPrincipal::WriteFailure;
    return trust.refusedUrls.contains(url) ? modPrincipal::NotGenuine : "";
  }

  /// False when a file cannot be downloaded, or is not taken. No action is carried out then.
  bool Downloads() {
    auto& actions = outcome.reading.actions;
    if (nothingIsDownloaded) return true;
    for (auto& failing : actions) {
      const auto failure = FailureOf(failing);
      if (failure.empty()) continue;
      Fail(failing, failure);
      std::erase_if(actions, [](const TakenAction& action) {
        return !action.immediate && action.fate == Fate::Done;
      });
      return false;
    }
    return true;
  }

  /// Whether the download is not there, or not to be put where it belongs.
  bool StaysOut(const TakenAction& action) {
    const std::string path = ArgumentOf(action);
    const bool isRunning = action.command->verb == Verb::Update && path == "$apppath\\kestrane.exe";
    const bool isFirst = placed.insert(path).second;
    return isRunning || !isFirst || path.empty() || nothingIsDownloaded;
  }

  /// A file that stays ends the update; one that cannot be deleted does not.
  void Installs() {
    auto& actions = outcome.reading.actions;
    for (auto action = actions.begin(); action != actions.end(); ++action) {
      if (action->immediate) continue;
      if (action->command->verb == Verb::Delete && DeletesUpdater(ArgumentOf(*action))) {
        Fail(*action, modPrincipal::DeleteFailure);
      } else if (action->command->IsDownload() && StaysOut(*action)) {
        Fail(*action, modPrincipal::WriteFailure);
        actions.erase(action + 1, actions.end());
        return;
      }
    }
  }

  const Script& script;
  const Trust& trust;
  Outcome& outcome;
  bool nothingIsDownloaded;
  std::set<std::string> placed;
};

/// A program is started only where the line says whether to wait for it.
void MarkProgramsThatAreNotStarted(const Script& script, Reading& reading) {
  for (auto& action : reading.actions) {
    if (action.command->verb != Verb::Execute) continue;
    const auto& waits = action.command->Arguments()[1].words;
    if (!ValueOf(waits, FieldAt(script.lines[action.line], 2))) action.fate = Fate::NotStarted;
  }
}

std::string FinalScreenOf(const Reading& reading) {
  if (!reading.failure.empty()) return reading.failure;
  const bool isUpdate = !std::all_of(reading.actions.begin(), reading.actions.end(), IsImmediate);
  return std::string(isUpdate ? modPrincipal::Success : modPrincipal::NothingToDo);
}

Outcome OutcomeOf(const Script& script, Reading reading, const std::string& installed, bool probe,
                  const Trust& trust) {
  Outcome outcome = {installed, installed, std::move(reading), "", 0};
  auto& actions = outcome.reading.actions;
  if (probe) Probe(script, outcome.reading);
  // Of a refused script no row is carried out; the last one may be what it is refused for.
  const bool isRefused = !outcome.reading.failure.empty();
  std::erase_if(actions, [&](const TakenAction& action) {
    return isRefused && !action.immediate && action.fate != Fate::Missing;
  });
  std::stable_partition(actions.begin(), actions.end(), IsImmediate);
  outcome.finalScreen = FinalScreenOf(outcome.reading);
  for (const auto& action : actions) outcome.bytes += action.size;
  const bool nothingIsDownloaded = probe && outcome.bytes == 0 && !trust.checksFiles;
  if (!isRefused) Rehearsal(script, trust, outcome, nothingIsDownloaded).CarryOut();
  MarkProgramsThatAreNotStarted(script, outcome.reading);
  return outcome;
}

bool AreAlike(const Outcome& a, const Outcome& b) {
  const auto isSame = [](const TakenAction& x, const TakenAction& y) { return x.line == y.line; };
  return a.first.empty() == b.first.empty() && a.finalScreen == b.finalScreen &&
         std::equal(a.reading.actions.begin(), a.reading.actions.end(), b.reading.actions.begin(),
                    b.reading.actions.end(), isSame);
}

}  // namespace

Offer SimulateOffer(const Script& script, bool probe, const Trust& trust) {
  if (!trust.takesScript || !Read(script, {0}).offersUpdater) return {};
  const Fields& header = script.lines.front();
  Offer offer = {header[0], header[1], "", 0};
  if (trust.refusedUrls.contains(offer.url)) offer.failure = modPrincipal::NotGenuine;
  if (!probe) return offer;
  const auto bytes = modFunciones::AvailableLength(offer.url);
  offer.bytes = bytes.value_or(0);
  if (!bytes) offer.failure = modPrincipal::UpdaterNotAvailable;
  return offer;
}

std::string AsReceived(const std::string& installed) {
  return installed.substr(std::min(installed.find_first_not_of(" \t"), installed.size()));
}

Outcome Simulate(const Script& script, const std::string& installed, bool probe,
                 const Trust& trust) {
  const auto number = modPrincipal::VersionToNumber(AsReceived(installed));
  return OutcomeOf(script, ReadIfTaken(script, {number}, trust), installed, probe, trust);
}

bool GoesWrong(const Outcome& outcome) {
  const auto& actions = outcome.reading.actions;
  const bool differs = std::any_of(actions.begin(), actions.end(),
                                   [](const auto& action) { return action.published.has_value(); });
  return differs || (outcome.finalScreen != modPrincipal::Success &&
                     outcome.finalScreen != modPrincipal::NothingToDo);
}

void CompareWithSite(const Script& script, const Site& site, std::vector<Outcome>& outcomes) {
  for (auto& outcome : outcomes) {
    for (auto& action : outcome.reading.actions) {
      if (!action.command->IsDownload() || action.fate == Fate::Missing) continue;
      const auto file = site.FileOf(FieldAt(script.lines[action.line], 2));
      if (!file) continue;
      std::error_code error;
      const auto size = std::filesystem::file_size(*file, error);
      const bool isSame = !error && size == static_cast<std::uintmax_t>(action.size);
      if (!isSame) action.published = error ? 0 : size;
    }
  }
}

std::vector<Outcome> SimulateAll(const Script& script, bool probe, const Trust& trust) {
  const auto versions = VersionsToldApart(script);
  const Reading all = ReadIfTaken(script, versions, trust);
  const auto met = BlocksMetByEach(all, versions.size());
  std::vector<Outcome> outcomes;
  std::vector<std::size_t> firsts;  // the version that each of them begins with
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const std::string installed = VersionOf(versions[i]);
    if (i > 1 && met[i] == met[i - 1]) {  // behind the one that is no version
      outcomes.back().last = installed;
      continue;
    }
    Outcome outcome = OutcomeOf(script, Alone(all, met[i]), installed, false, trust);
    if (!outcomes.empty() && AreAlike(outcomes.back(), outcome)) {
      outcomes.back().last = installed;
    } else {
      outcomes.push_back(std::move(outcome));
      firsts.push_back(i);
    }
  }
  if (!probe) return outcomes;
  for (std::size_t i = 0; i < outcomes.size(); ++i) {  // each range is asked for once
    const std::string last = outcomes[i].last;
    outcomes[i] = OutcomeOf(script, Alone(all, met[firsts[i]]), outcomes[i].first, true, trust);
    outcomes[i].last = last;
  }
  return outcomes;
}

}  // namespace publish
