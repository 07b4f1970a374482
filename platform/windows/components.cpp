#include "platform/components.h"

#include <windows.h>

#include <string>

namespace platform::components {
namespace {

using ComponentEntry = HRESULT WINAPI();

/// A thread's start routine has one parameter more than a component's entry point.
DWORD WINAPI RunEntryPoint(void* entryPoint) {
  return static_cast<DWORD>(reinterpret_cast<ComponentEntry*>(entryPoint)());
}

}  // namespace

void FreeComponent::operator()(void* library) const { FreeLibrary(static_cast<HMODULE>(library)); }

void CloseWorker::operator()(void* worker) const { CloseHandle(worker); }

Library Load(const std::string& path) {
  // By its full path, and with its own folder first for the libraries that it needs.
  std::string fullPath(MAX_PATH, '\0');
  fullPath.resize(GetFullPathNameA(path.c_str(), MAX_PATH, fullPath.data(), nullptr));
  return Library(LoadLibraryExA(fullPath.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

EntryPoint FindEntryPoint(const Library& library, const std::string& name) {
  return reinterpret_cast<EntryPoint>(
      GetProcAddress(static_cast<HMODULE>(library.get()), name.c_str()));
}

Worker StartWorker(EntryPoint entryPoint) {
  DWORD id = 0;
  return Worker(CreateThread(nullptr, 0, RunEntryPoint, entryPoint, 0, &id));
}

bool WaitForEnd(const Worker& worker, std::uint32_t milliseconds) {
  return WaitForSingleObject(worker.get(), milliseconds) == WAIT_OBJECT_0;
}

}  // namespace platform::components
