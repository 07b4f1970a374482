#include "publish/reading.h"

#include <algorithm>

#include "run/messages.h"

namespace publish {
namespace {

/// Many installations at once, until an END leaves none.
class Installations : public modPrincipal::ScriptSink {
 public:
  Installations(const std::vector<std::int32_t>& installed, Reading& result)
      : versions(installed), reading(result), readers(0, installed.size()) {}

  void TakeHeader(std::int32_t version, const std::string& /*url*/) override {
    reading.offersUpdater = version > 0;
  }

  void TakeName(const std::string& name) override { reading.name = name; }

  bool Holds(const modPrincipal::Condition& condition) override {
    reading.blocks.push_back({condition.line, readers.Within(Meeting(condition))});
    return !reading.blocks.back().audience.IsEmpty();
  }

  bool TakeAction(const modPrincipal::ActionLine& action) override {
    reading.actions.push_back(
        {action.line, reading.blocks.size() - 1, &action.command, action.atOnce});
    return true;
  }

  bool ReadsOn() override {
    readers = readers.Without(reading.blocks.back().audience);
    return !readers.IsEmpty();
  }

 private:
  /// A comparison holds alike for all lesser versions, and for all greater ones.
  [[nodiscard]] Audience Meeting(const modPrincipal::Condition& condition) const {
    const auto [least, greater] =
        std::equal_range(versions.begin(), versions.end(), condition.version);
    const bool holdsForEqual = condition.HoldsFor(condition.version);
    auto first = holdsForEqual ? least : greater;
    auto end = holdsForEqual ? greater : least;
    if (condition.HoldsFor(condition.version - 1)) first = versions.begin();
    if (condition.HoldsFor(condition.version + 1)) end = versions.end();
    const auto indexOf = [&](auto at) { return static_cast<std::size_t>(at - versions.begin()); };
    return {indexOf(first), indexOf(end)};
  }

  const std::vector<std::int32_t>& versions;
  Reading& reading;
  Audience readers;
};

}  // namespace

Reading Read(const Script& script, const std::vector<std::int32_t>& versions) {
  Reading reading;
  Installations installations(versions, reading);
  const auto ending = modPrincipal::ReadScript(script.lines, installations);
  if (ending.kind == modPrincipal::Ending::Kind::NotUnderstood) {
    reading.failure = modPrincipal::ScriptNotUnderstood;
  }
  return reading;
}

}  // namespace publish
