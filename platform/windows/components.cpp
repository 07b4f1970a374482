#include "platform/components.h"

#include <windows.h>

#include <objbase.h>

#include <string>

#include "platform/windows/libraries.h"

namespace platform::components {
namespace {

using ComponentEntry = HRESULT WINAPI();

/// What a library of this file points to.
struct Component {
  explicit Component(const std::string& folder) : search(folder) {}
  ~Component() {
    if (module != nullptr) FreeLibrary(module);
  }
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  windows_layer::WiderSearch search;
  HMODULE module = nullptr;
};

/// A thread's start routine has one parameter more than a component's entry point.
DWORD WINAPI RunEntryPoint(void* entryPoint) {
  // Components may create objects while they register.
  const HMODULE com = windows_layer::LoadSystemLibrary("ole32.dll");
  const auto initialize = windows_layer::FunctionOf<decltype(CoInitialize)>(com, "CoInitialize");
  const auto uninitialize =
      windows_layer::FunctionOf<decltype(CoUninitialize)>(com, "CoUninitialize");
  const bool isPrepared = SUCCEEDED(initialize(nullptr));
  const HRESULT result = reinterpret_cast<ComponentEntry*>(entryPoint)();
  if (isPrepared) uninitialize();
  return static_cast<DWORD>(result);
}

}  // namespace

void FreeComponent::operator()(void* library) const { delete static_cast<Component*>(library); }

void CloseWorker::operator()(void* worker) const { CloseHandle(worker); }

Library Load(const std::string& path) {
  if (!windows_layer::LoaderIsFree(windows_layer::LongestLoading)) return nullptr;
  std::string fullPath(MAX_PATH, '\0');
  fullPath.resize(GetFullPathNameA(path.c_str(), MAX_PATH, fullPath.data(), nullptr));
  auto component = std::make_unique<Component>(fullPath.substr(0, fullPath.find_last_of('\\')));
  // With its own folder first for the libraries that it needs. The second call is for systems whose
  // search then leaves the program's folder out.
  component->module = LoadLibraryExA(fullPath.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (component->module == nullptr) component->module = LoadLibraryA(fullPath.c_str());
  if (component->module == nullptr) return nullptr;
  return Library(component.release());
}

void LeaveBehind(Library library) {
  const std::unique_ptr<Component> component(static_cast<Component*>(library.release()));
  component->module = nullptr;
}

EntryPoint FindEntryPoint(const Library& library, const std::string& name) {
  const HMODULE module = static_cast<Component*>(library.get())->module;
  return reinterpret_cast<EntryPoint>(GetProcAddress(module, name.c_str()));
}

Worker StartWorker(EntryPoint entryPoint) {
  DWORD id = 0;
  return Worker(CreateThread(nullptr, 0, RunEntryPoint, entryPoint, 0, &id));
}

bool WaitForEnd(const Worker& worker, std::uint32_t milliseconds) {
  return WaitForSingleObject(worker.get(), milliseconds) == WAIT_OBJECT_0;
}

}  // namespace platform::components
