#include "publish/audience.h"

#include <algorithm>
#include <iterator>

namespace publish {

Audience::Audience(std::size_t first, std::size_t end) {
  if (first < end) ranges.push_back({first, end});
}

std::vector<Audience::Range>::const_iterator Audience::FirstEndingBehind(
    std::size_t version) const {
  return std::partition_point(ranges.begin(), ranges.end(),
                              [&](const Range& range) { return range.end <= version; });
}

bool Audience::Overlaps(const Audience& other) const {
  const bool hasFewer = ranges.size() < other.ranges.size();
  const Audience& fewer = hasFewer ? *this : other;
  const Audience& more = hasFewer ? other : *this;
  return std::any_of(fewer.ranges.begin(), fewer.ranges.end(), [&](const Range& range) {
    const auto met = more.FirstEndingBehind(range.first);
    return met != more.ranges.end() && met->first < range.end;
  });
}

bool Audience::IsWithin(const Audience& other) const {
  return std::all_of(ranges.begin(), ranges.end(), [&](const Range& range) {
    const auto met = other.FirstEndingBehind(range.first);
    return met != other.ranges.end() && met->first <= range.first && range.end <= met->end;
  });
}

Audience Audience::Common(const Audience& other) const {
  Audience common(0, 0);
  for (const auto& [first, end] : ranges) {
    for (auto met = other.FirstEndingBehind(first); met != other.ranges.end() && met->first < end;
         ++met) {
      common.ranges.push_back({std::max(first, met->first), std::min(end, met->end)});
    }
  }
  return common;
}

void Audience::Remove(const Audience& other) {
  for (const auto& removed : other.ranges) {
    const auto met = FirstEndingBehind(removed.first);
    const auto behind = std::find_if(
        met, ranges.cend(), [&](const Range& range) { return range.first >= removed.end; });
    if (met == behind) continue;
    const Range below = {met->first, removed.first};
    const Range above = {removed.end, std::prev(behind)->end};
    auto left = ranges.erase(met, behind);
    if (above.first < above.end) left = ranges.insert(left, above);
    if (below.first < below.end) ranges.insert(left, below);
  }
}

}  // namespace publish
