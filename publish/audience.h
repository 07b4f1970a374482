#pragma once

// A script as all installations read it, in one go.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// Some of the versions that a script tells apart.
class Audience {
 public:
  /// Those from first up to end, not included: indices into the versions in rising order.
  Audience(std::size_t first, std::size_t end);

  [[nodiscard]] bool IsEmpty() const { return ranges.empty(); }
  [[nodiscard]] bool Overlaps(const Audience& other) const;
  [[nodiscard]] Audience Within(const Audience& other) const;
  [[nodiscard]] Audience Without(const Audience& other) const;

 private:
  struct Range {
    std::size_t first;
    std::size_t end;
  };
  std::vector<Range> ranges;  // in rising order, none of them empty
};

/// The lines from a VERSION line to the next.
struct Block {
  std::size_t opening;  // index of the VERSION line
  Audience audience;    // those for whom it takes effect
};

/// An action line that takes effect for somebody.
struct SharedAction {
  std::size_t line;   // index into Script::lines
  std::size_t block;  // index into the blocks
  const modPrincipal::Command* command;
  bool immediate;
};

struct ReadingOfAll {
  std::string failure;                 // the message that somebody would meet, or ""
  std::vector<std::int32_t> versions;  // numbers of the versions that the script tells apart
  std::vector<Block> blocks;
  std::vector<SharedAction> actions;  // in script order
};

[[nodiscard]] ReadingOfAll ReadForAll(const Script& script);

}  // namespace publish
