#include "platform/components.h"

#include <dlfcn.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

#include "platform/linux/paths.h"

namespace platform::components {
namespace {

using ComponentEntry = int();

/// Shared by the worker thread and whoever waits for it.
struct WorkerState {
  std::mutex mutex;
  std::condition_variable changed;
  bool ended = false;
};
using SharedState = std::shared_ptr<WorkerState>;

void RunEntryPoint(EntryPoint entryPoint, const SharedState& state) {
  reinterpret_cast<ComponentEntry*>(entryPoint)();
  const std::lock_guard lock(state->mutex);
  state->ended = true;
  state->changed.notify_all();
}

}  // namespace

void FreeComponent::operator()(void* library) const { dlclose(library); }

void CloseWorker::operator()(void* worker) const { delete static_cast<SharedState*>(worker); }

Library Load(const std::string& path) {
  // A bare name would be looked for among the system's libraries.
  std::error_code failure;
  const auto absolute = std::filesystem::absolute(linux_layer::ToSystemPath(path), failure);
  return Library(failure ? nullptr : dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL));
}

void LeaveBehind(Library library) { (void)library.release(); }

EntryPoint FindEntryPoint(const Library& library, const std::string& name) {
  return dlsym(library.get(), name.c_str());
}

Worker StartWorker(EntryPoint entryPoint) {
  auto state = std::make_shared<WorkerState>();
  try {
    std::thread(RunEntryPoint, entryPoint, state).detach();
  } catch (const std::system_error&) {
    return nullptr;
  }
  return Worker(new SharedState(std::move(state)));
}

bool WaitForEnd(const Worker& worker, std::uint32_t milliseconds) {
  WorkerState& state = **static_cast<SharedState*>(worker.get());
  std::unique_lock lock(state.mutex);
  return state.changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                [&state] { return state.ended; });
}

}  // namespace platform::components
