#pragma once

#include <functional>

namespace platform::windows {

/// Starts a call that may block on a thread of the layer's own, one at a time, and returns at once.
/// What the call captures belongs to it until FinishBackgroundCall.
void StartBackgroundCall(std::function<void()> call);

/// Returns when the call that was started has ended, at once when there is none. Meanwhile this
/// thread, the user interface's, goes on handling its events, so that the window stays alive
/// whatever the network does.
void FinishBackgroundCall();

/// Leaves the call that was started to itself, if it has not ended: it may never do so.
void AbandonBackgroundCall();

/// Starts a call and finishes it.
void RunInBackground(std::function<void()> call);

}  // namespace platform::windows
