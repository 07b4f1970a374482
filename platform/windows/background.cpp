#include "platform/windows/background.h"

#include <memory>
#include <utility>

#include "platform/window.h"

namespace platform::windows_layer {
namespace {

// Milliseconds. Most calls are over before anything else is to be done. Otherwise events are
// handled as they come.
constexpr DWORD ShortCall = 10;
constexpr DWORD Rest = 100;

// What runs calls, and whether it is at one.
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

}  // namespace

void Worker::Start(std::function<void()> next) {
  call = std::move(next);
  ResetEvent(done);
  SetEvent(start);
}

Worker* NewWorker() {
  auto worker = std::make_unique<Worker>();
  if (worker->start == nullptr || worker->done == nullptr) return nullptr;
  const HANDLE thread = CreateThread(nullptr, 0, Work, worker.get(), 0, nullptr);
  if (thread == nullptr) return nullptr;
  CloseHandle(thread);
  return worker.release();
}

void StartBackgroundCall(std::function<void()> call) {
  FinishBackgroundCall();
  if (theWorker == nullptr) theWorker = NewWorker();
  if (theWorker == nullptr) return call();
  theWorker->Start(std::move(call));
  isAtWork = true;
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

}  // namespace platform::windows_layer
