#pragma once

#include <functional>

namespace platform::windows {

/// Runs a call that may block on a thread of the layer's own, and returns when it is done.
/// Meanwhile this thread, the user interface's, goes on handling its events, so that the window
/// stays alive whatever the network does. What the call captures belongs to it while it runs.
void RunInBackground(const std::function<void()>& call);

}  // namespace platform::windows
