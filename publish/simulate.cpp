#include "publish/simulate.h"

#include <algorithm>

#include "publish/progress.h"
#include "publish/versions.h"
#include "run/messages.h"
#include "script/version.h"
#include "transfer/http_probe.h"

namespace publish {
namespace {

using modPrincipal::FilesNotAvailable;

bool IsImmediate(const TakenAction& action) { return action.immediate; }

/// Asks the server for the files, as long as it has them.
void Probe(const Script& script, Reading& reading) {
  std::size_t asked = 0;
  auto at = reading.actions.begin();
  for (; at != reading.actions.end() && reading.failure != FilesNotAvailable; ++at) {
    const std::string& url = FieldAt(script.lines[at->line], 2);
    if (at->command->effect != modPrincipal::Effect::Download || url.empty()) continue;
    ShowProgress(++asked);
    const auto length = modFunciones::AvailableLength(url);
    at->size = length.value_or(0);
    at->missing = !length;
    if (at->missing) reading.failure = FilesNotAvailable;
  }
  reading.actions.erase(at, reading.actions.end());
}

std::string FinalScreenOf(const Reading& reading) {
  if (!reading.failure.empty()) return reading.failure;
  const bool isUpdate = !std::all_of(reading.actions.begin(), reading.actions.end(), IsImmediate);
  return std::string(isUpdate ? modPrincipal::Success : modPrincipal::NothingToDo);
}

bool AreAlike(const Outcome& a, const Outcome& b) {
  const auto isSame = [](const TakenAction& x, const TakenAction& y) { return x.line == y.line; };
  return a.first.empty() == b.first.empty() && a.finalScreen == b.finalScreen &&
         std::equal(a.reading.actions.begin(), a.reading.actions.end(), b.reading.actions.begin(),
                    b.reading.actions.end(), isSame);
}

}  // namespace

Offer SimulateOffer(const Script& script, bool probe) {
  if (!Read(script, {0}).offersUpdater) return {};
  const Fields& header = script.lines.front();
  Offer offer = {header[0], header[1], "", 0};
  if (!probe) return offer;
  const auto bytes = modFunciones::AvailableLength(offer.url);
  offer.bytes = bytes.value_or(0);
  if (!bytes) offer.failure = modPrincipal::UpdaterNotAvailable;
  return offer;
}

Outcome Simulate(const Script& script, const std::string& installed, bool probe) {
  StartProgress("Asking the server", script.lines.size());
  Outcome outcome = {installed, installed, Read(script, {modPrincipal::VersionToNumber(installed)}),
                     "", 0};
  auto& actions = outcome.reading.actions;
  if (probe) Probe(script, outcome.reading);
  EndProgress();
  // Of a refused script no row is carried out; the last one may be what it is refused for.
  const bool isRefused = !outcome.reading.failure.empty();
  std::erase_if(actions, [&](const TakenAction& action) {
    return isRefused && !action.immediate && !action.missing;
  });
  std::stable_partition(actions.begin(), actions.end(), IsImmediate);
  outcome.finalScreen = FinalScreenOf(outcome.reading);
  for (const auto& action : actions) outcome.bytes += action.size;
  return outcome;
}

std::vector<Outcome> SimulateAll(const Script& script, bool probe) {
  std::vector<Outcome> outcomes;
  for (const std::int32_t number : VersionsToldApart(script)) {
    const std::string installed = VersionOf(number);
    Outcome outcome = Simulate(script, installed, false);
    if (!outcomes.empty() && AreAlike(outcomes.back(), outcome)) {
      outcomes.back().last = installed;
    } else {
      outcomes.push_back(std::move(outcome));
    }
  }
  if (!probe) return outcomes;
  for (auto& outcome : outcomes) {  // each range is asked for once
    const std::string last = outcome.last;
    outcome = Simulate(script, outcome.first, true);
    outcome.last = last;
  }
  return outcomes;
}

}  // namespace publish
