#include "platform/windows/background.h"

#include <windows.h>

#include <utility>

#include "platform/window.h"

namespace platform::windows {
namespace {

// Milliseconds. Most calls are over before anything else is to be done; then the events are looked
// at when there are some, and now and then for what waits to be displayed.
constexpr DWORD ShortCall = 10;
constexpr DWORD LongestRest = 100;

/// One thread for all calls, since creating one costs more than most calls take.
struct Worker {
  HANDLE start = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  HANDLE done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  std::function<void()> call;  // handed over with start, handed back with done
};

// What runs calls, and whether it is at one. A worker lives as long as the process; none when the
// system has no thread or events for it.
Worker* theWorker = nullptr;
bool isAtWork = false;

DWORD WINAPI Work(void* argument) {
  auto& worker = *static_cast<Worker*>(argument);
  while (WaitForSingleObject(worker.start, INFINITE) == WAIT_OBJECT_0) {
    worker.call();
    worker.call = nullptr;
    SetEvent(worker.done);
  }
  return 0;
}

bool ProvideWorker() {
  if (theWorker != nullptr) return true;
  auto* const worker = new Worker;
  if (worker->start == nullptr || worker->done == nullptr) return false;
  const HANDLE thread = CreateThread(nullptr, 0, Work, worker, 0, nullptr);
  if (thread == nullptr) return false;
  CloseHandle(thread);
  theWorker = worker;
  return true;
}

}  // namespace

void StartBackgroundCall(std::function<void()> call) {
  FinishBackgroundCall();
  if (!ProvideWorker()) return call();
  theWorker->call = std::move(call);
  isAtWork = true;
  SetEvent(theWorker->start);
}

void FinishBackgroundCall() {
  if (!isAtWork) return;
  HANDLE done = theWorker->done;
  DWORD wait = WaitForSingleObject(done, ShortCall);
  while (wait != WAIT_OBJECT_0) {
    window::ProcessPendingEvents();
    wait = MsgWaitForMultipleObjectsEx(1, &done, LongestRest, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    // Input keeps: a while later there is more of it to handle at once.
    if (wait == WAIT_OBJECT_0 + 1) wait = WaitForSingleObject(done, ShortCall);
  }
  isAtWork = false;
}

void AbandonBackgroundCall() {
  if (!isAtWork) return;
  const bool hasEnded = WaitForSingleObject(theWorker->done, 0) == WAIT_OBJECT_0;
  if (!hasEnded) theWorker = nullptr;  // the next call gets another
  isAtWork = false;
}

void RunInBackground(std::function<void()> call) {
  StartBackgroundCall(std::move(call));
  FinishBackgroundCall();
}

}  // namespace platform::windows
