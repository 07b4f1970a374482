#pragma once

// Component libraries and the worker threads that run their entry points. An empty object is
// failure; each object is closed by its owner's end unless it is released from it.

#include <cstdint>
#include <memory>
#include <string>

namespace platform::components {

struct FreeComponent {
  void operator()(void* library) const;
};
using Library = std::unique_ptr<void, FreeComponent>;

struct CloseWorker {
  void operator()(void* worker) const;
};
/// Closing a worker does not end it.
using Worker = std::unique_ptr<void, CloseWorker>;

/// A function without parameters that returns a 32-bit number. Windows: stdcall. Linux: of a shared
/// object.
using EntryPoint = void*;

/// Windows: until it is freed or left behind, the folders of the component, of the program and of
/// PATH are searched for libraries as well as the system's. Fails after 10 seconds when a component
/// that was left behind keeps libraries from being loaded.
[[nodiscard]] Library Load(const std::string& path);

/// Keeps the library loaded for good, for a worker that still runs in it.
void LeaveBehind(Library library);

/// Null when the library has no such entry.
[[nodiscard]] EntryPoint FindEntryPoint(const Library& library, const std::string& name);

/// Starts a thread that runs the entry point once. Windows: with COM prepared.
[[nodiscard]] Worker StartWorker(EntryPoint entryPoint);

/// Blocks until the worker has ended, at most for that long; true when it has ended.
[[nodiscard]] bool WaitForEnd(const Worker& worker, std::uint32_t milliseconds);

}  // namespace platform::components
