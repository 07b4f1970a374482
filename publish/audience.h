#pragma once

#include <cstddef>
#include <vector>

namespace publish {

/// Some of the installed versions that a script is read for.
class Audience {
 public:
  /// Versions from first up to end, not included: indices into those in rising order.
  struct Range {
    std::size_t first;
    std::size_t end;
  };

  Audience(std::size_t first, std::size_t end);

  /// In rising order, none of them empty, and a version between each two that is not meant.
  [[nodiscard]] const std::vector<Range>& Ranges() const { return ranges; }

  [[nodiscard]] bool IsEmpty() const { return ranges.empty(); }
  [[nodiscard]] bool Overlaps(const Audience& other) const;
  [[nodiscard]] bool IsWithin(const Audience& other) const;

  /// Those that are in both; quicker where the other has more ranges.
  [[nodiscard]] Audience Common(const Audience& other) const;

  void Remove(const Audience& other);

 private:
  // There may be a range for each block of a script, so each is looked up, not walked to.
  [[nodiscard]] std::vector<Range>::const_iterator FirstEndingBehind(std::size_t version) const;

  std::vector<Range> ranges;
};

}  // namespace publish
