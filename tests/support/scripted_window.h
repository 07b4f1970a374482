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
  platform::window::Handlers handlers = {};
  bool shown = false;
  bool enabled = true;
  std::map<int, std::string> text;
  std::map<int, std::vector<Rectangle>> drawn;
  bool flatLook = false;
  double twipsPerPixel = 15;
  int answer = 1;                    // to every message box
  std::vector<std::string> history;  // what the program did, an event each
  std::function<void()> onYield = [] {};
};

/// What happened since Reset, and what the window is to answer.
extern State state;
void Reset();

/// Adds an event to the history.
void Tell(const std::string& event);

/// The history from the first event of this text on, all of it for "": in UTF-8, with "@" for
/// C:\Kt\. A line ends where it is full.
std::string Transcript(const std::string& from);

}  // namespace scripted_window
