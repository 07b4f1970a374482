#include "platform/windows/background.h"

#include <windows.h>

#include "platform/window.h"

namespace platform::windows {
namespace {

constexpr DWORD PollInterval = 20;  // milliseconds; nobody feels a click wait that long

/// One thread for all calls, since creating one costs more than most calls take.
struct Worker {
  HANDLE start = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  HANDLE done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  const std::function<void()>* call = nullptr;  // handed over with start, handed back with done
};

DWORD WINAPI Work(void* argument) {
  auto& worker = *static_cast<Worker*>(argument);
  while (WaitForSingleObject(worker.start, INFINITE) == WAIT_OBJECT_0) {
    (*worker.call)();
    SetEvent(worker.done);
  }
  return 0;
}

/// The worker lives as long as the process; null when the system has no thread or events for it.
Worker* TheWorker() {
  static Worker worker;
  static const HANDLE thread = CreateThread(nullptr, 0, Work, &worker, 0, nullptr);
  const bool complete = worker.start != nullptr && worker.done != nullptr && thread != nullptr;
  return complete ? &worker : nullptr;
}

}  // namespace

void RunInBackground(const std::function<void()>& call) {
  Worker* worker = TheWorker();
  if (worker == nullptr) return call();
  worker->call = &call;
  SetEvent(worker->start);
  while (WaitForSingleObject(worker->done, PollInterval) == WAIT_TIMEOUT) {
    window::ProcessPendingEvents();
  }
}

}  // namespace platform::windows
