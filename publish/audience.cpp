#include "publish/audience.h"

#include <algorithm>
#include <utility>

#include "publish/versions.h"
#include "run/messages.h"
#include "script/version.h"

namespace publish {
namespace {

/// Everybody at once, until an END leaves nobody.
class Everybody : public modPrincipal::ScriptSink {
 public:
  explicit Everybody(ReadingOfAll& all) : reading(all), readers(0, all.versions.size()) {}

  void TakeHeader(std::int32_t /*version*/, const std::string& /*url*/) override {}
  void TakeName(const std::string& /*name*/) override {}

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
    const auto& versions = reading.versions;
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

  ReadingOfAll& reading;
  Audience readers;
};

}  // namespace

Audience::Audience(std::size_t first, std::size_t end) {
  if (first < end) ranges.push_back({first, end});
}

bool Audience::Overlaps(const Audience& other) const {
  auto one = ranges.begin();
  auto two = other.ranges.begin();
  while (one != ranges.end() && two != other.ranges.end()) {
    if (one->first < two->end && two->first < one->end) return true;
    one->end < two->end ? void(++one) : void(++two);
  }
  return false;
}

Audience Audience::Within(const Audience& other) const { return Without(Without(other)); }

Audience Audience::Without(const Audience& other) const {
  Audience left(0, 0);
  auto cut = other.ranges.begin();
  for (auto [first, end] : ranges) {
    while (cut != other.ranges.end() && cut->end <= first) ++cut;
    for (auto at = cut; at != other.ranges.end() && at->first < end; ++at) {
      if (first < at->first) left.ranges.push_back({first, at->first});
      first = at->end;
    }
    if (first < end) left.ranges.push_back({first, end});
  }
  return left;
}

ReadingOfAll ReadForAll(const Script& script) {
  ReadingOfAll reading;
  for (const auto& version : VersionsToldApart(script)) {
    reading.versions.push_back(modPrincipal::VersionToNumber(version));
  }
  Everybody everybody(reading);
  const auto ending = modPrincipal::ReadScript(script.lines, everybody);
  if (ending.kind == modPrincipal::Ending::Kind::NotUnderstood) {
    reading.failure = modPrincipal::ScriptNotUnderstood;
  }
  return reading;
}

}  // namespace publish
