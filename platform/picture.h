#pragma once

// What a picture box shows, as both layers keep it. A download erases and draws at every block, and
// next to always the same again.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace platform {

/// Twips; turned into pixels when it is painted.
struct FilledRectangle {
  double left;
  double top;
  double right;
  double bottom;
  std::uint32_t colour;
  bool operator==(const FilledRectangle&) const = default;
};

class Picture {
 public:
  void Erase() { count = 0; }

  void Draw(const FilledRectangle& rectangle) {
    if (count == drawn.size()) drawn.emplace_back();
    if (drawn[count] != rectangle) {
      drawn[count] = rectangle;
      changed = true;
    }
    ++count;
  }

  /// Whether the screen should show something else than it does.
  [[nodiscard]] bool HasChanged() const { return changed || count != shown.size(); }

  /// What was drawn is what the screen should show from now on.
  void Show() {
    const auto all = std::span(drawn).first(count);
    shown.assign(all.begin(), all.end());
    changed = false;
  }

  [[nodiscard]] const std::vector<FilledRectangle>& Shown() const { return shown; }

 private:
  std::vector<FilledRectangle> drawn;  // of the first count of them, since the box was erased
  std::size_t count = 0;
  bool changed = false;  // one of them was, since Show
  std::vector<FilledRectangle> shown;
};

}  // namespace platform
