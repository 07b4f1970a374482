#pragma once

// The window as tests see it: it stands in for the real one and remembers what the program does.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/window.h"
#include "run/progress_window.h"

namespace scripted_window {

struct Rectangle {
  double left, top, right, bottom;
  bool operator==(const Rectangle&) const = default;
};

struct State {
  std::map<int, std::string> text;
  std::map<int, std::vector<Rectangle>> drawn;
  std::map<int, int> refreshes;
  bool flatLook = false;
  double twipsPerPixel = 15;
  std::vector<std::string> messageBoxes;  // "style|title|text"
  std::vector<std::string> history;       // every text set, as "control:text"
  std::function<void()> onYield = [] {};
};

/// What happened since Reset, and what the window is to answer.
extern State state;
void Reset();

}  // namespace scripted_window
