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
    reading.blocks.push_back(
        {condition.line, reading.actions.size(), Meeting(condition).Common(readers)});
    return !reading.blocks.back().audience.IsEmpty();
  }

  bool TakeAction(const modPrincipal::ActionLine& action) override {
    reading.actions.push_back(
        {action.line, reading.blocks.size() - 1, &action.command, action.atOnce});
    return true;
  }

  bool ReadsOn() override {
    Block& block = reading.blocks.back();
    block.lastName = reading.name;
    readers.Remove(block.audience);
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
  reading.actions.reserve(script.lines.size());  // there may be a million
  Installations installations(versions, reading);
  const auto ending = modPrincipal::ReadScript(script.lines, installations);
  if (ending.kind == modPrincipal::Ending::Kind::NotUnderstood) {
    reading.failure = modPrincipal::ScriptNotUnderstood;
  }
  return reading;
}

std::vector<BlocksMet> BlocksMetByEach(const Reading& all, std::size_t versions) {
  std::vector<BlocksMet> met(versions);
  for (std::size_t i = 0; i < all.blocks.size(); ++i) {
    for (const auto& [first, end] : all.blocks[i].audience.Ranges()) {
      for (std::size_t version = first; version < end; ++version) met[version].push_back(i);
    }
  }
  return met;
}

Reading Alone(const Reading& all, const BlocksMet& blocks) {
  Reading alone = {all.failure, all.name, all.offersUpdater, {}, {}};
  for (const std::size_t i : blocks) {
    const auto& block = all.blocks[i];
    const bool isLast = i + 1 == all.blocks.size();
    const std::size_t end = isLast ? all.actions.size() : all.blocks[i + 1].firstAction;
    for (std::size_t action = block.firstAction; action < end; ++action) {
      alone.actions.push_back(all.actions[action]);
    }
    if (!block.lastName) continue;
    alone.name = *block.lastName;
    alone.failure.clear();  // it stands further down
  }
  return alone;
}

}  // namespace publish
