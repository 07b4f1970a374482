#include "publish/audience.h"

namespace publish {

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

}  // namespace publish
