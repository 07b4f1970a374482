#include "platform/windows/background.h"

#include <windows.h>

#include <memory>
#include <utility>

#include "platform/window.h"

namespace platform::windows {
namespace {

// Milliseconds. Most calls are over before anything else is to be done. Otherwise events are
// handled as they come.
constexpr DWORD ShortCall = 10;
constexpr DWORD Rest = 100;

/// One thread for all calls, since creating one costs more than most calls take.
struct Worker {
  Worker() = default;
  ~Worker() {
    CloseHandle(start);
    CloseHandle(done);
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  HANDLE start = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);  // until the next call
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
  auto worker = std::make_unique<Worker>();
  if (worker->start == nullptr || worker->done == nullptr) return false;
  const HANDLE thread = CreateThread(nullptr, 0, Work, worker.get(), 0, nullptr);
  if (thread == nullptr) return false;
  CloseHandle(thread);
  theWorker = worker.release();
  return true;
}

}  // namespace

void StartBackgroundCall(std::function<void()> call) {
  FinishBackgroundCall();
  if (!ProvideWorker()) return call();
  theWorker->call = std::move(call);
  isAtWork = true;
  ResetEvent(theWorker->done);
  SetEvent(theWorker->start);
}

void FinishBackgroundCall() {
  if (!isAtWork) return;
  while (WaitForSingleObject(theWorker->done, ShortCall) == WAIT_TIMEOUT) {
    window::ProcessPendingEvents();
    MsgWaitForMultipleObjectsEx(1, &theWorker->done, Rest, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
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
