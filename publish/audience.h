#pragma once

#include <cstddef>
#include <vector>

namespace publish {

/// Some of the installed versions that a script is read for.
class Audience {
 public:
  /// Those from first up to end, not included: indices into the versions in rising order.
  Audience(std::size_t first, std::size_t end);

  [[nodiscard]] bool IsEmpty() const { return ranges.empty(); }
  [[nodiscard]] bool Overlaps(const Audience& other) const;
  [[nodiscard]] Audience Within(const Audience& other) const { return Without(Without(other)); }
  [[nodiscard]] Audience Without(const Audience& other) const;

 private:
  struct Range {
    std::size_t first;
    std::size_t end;
  };
  std::vector<Range> ranges;  // in rising order, none of them empty
};

}  // namespace publish
