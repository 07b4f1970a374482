#pragma once

#include <windows.h>

#include <functional>

namespace platform::windows_layer {

/// A thread for many calls, one at a time, since creating one costs more than most calls take. It
/// lives as long as the process.
struct Worker {
  Worker() = default;
  ~Worker() {
    CloseHandle(start);
    CloseHandle(done);
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Hands over a call, when the one before has ended.
  void Start(std::function<void()> next);

  HANDLE start = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  HANDLE done = CreateEventW(nullptr, TRUE, TRUE, nullptr);  // set while there is no call
  std::function<void()> call;  // handed over with start, handed back with done
};

/// Null when the system has no thread or events for it.
[[nodiscard]] Worker* NewWorker();

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

}  // namespace platform::windows_layer
