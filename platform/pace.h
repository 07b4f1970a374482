#pragma once

// How often the window is looked after, as both layers do it. A loop that reads blocks sets texts,
// draws and yields at every block, thousands of times a second: what it sets and draws is displayed
// when a frame is over, and its yields look for events only now and then (Linux: with the frames).
// A yield that stands alone leaves nothing for later: after it the program may stand still for as
// long as it likes.

#include <cstdint>

namespace platform {

class Pace {
 public:
  // Milliseconds.
  static constexpr std::uint32_t FrameLength = 30;
  static constexpr std::uint32_t EventInterval = 10;

  /// Whether a yield in a loop is to display what waits, or to look for events. now: milliseconds
  /// of a counter that may begin again from 0.
  [[nodiscard]] bool FrameIsOver(std::uint32_t now) const { return now - displayed >= FrameLength; }
  [[nodiscard]] bool EventsAreDue(std::uint32_t now) const {
    return now - handled >= EventInterval;
  }

  /// What waited is on the screen.
  void Displayed(std::uint32_t now) { displayed = now; }
  /// The events that waited were handled.
  void EventsHandled(std::uint32_t now) { handled = now; }

 private:
  std::uint32_t displayed = 0;
  std::uint32_t handled = 0;
};

}  // namespace platform
