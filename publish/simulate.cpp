#include "publish/simulate.h"

#include <algorithm>

#include "publish/progress.h"
#include "publish/versions.h"
#include "run/messages.h"
#include "transfer/http_probe.h"

namespace publish {
namespace {

bool IsRecorded(const TakenAction& action) { return !action.immediate; }

std::string FinalScreenOf(const Reading& reading) {
  if (!reading.failure.empty()) return reading.failure;
  const bool isUpdate = std::any_of(reading.actions.begin(), reading.actions.end(), IsRecorded);
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
  if (!ReadFor(script, "", false).offersUpdater) return {};
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
  Outcome outcome = {installed, installed, ReadFor(script, installed, probe), "", 0};
  EndProgress();
  outcome.finalScreen = FinalScreenOf(outcome.reading);
  for (const auto& action : outcome.reading.actions) outcome.bytes += action.size;
  return outcome;
}

std::vector<Outcome> SimulateAll(const Script& script, bool probe) {
  std::vector<Outcome> outcomes;
  for (const auto& installed : VersionsToldApart(script)) {
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
