#pragma once

#include <windows.h>

namespace platform::windows {

/// Loads a library of the operating system, such as "wininet.dll", by its full path in the system
/// folder, so that a file of that name beside the program is never taken for it. It stays loaded.
/// Where the system lacks it the process ends with a message of the system's.
[[nodiscard]] HMODULE LoadSystemLibrary(const char* name);

/// A function of a library under the type of its declaration; null when the library lacks it.
template <typename Function>
[[nodiscard]] Function* FunctionOf(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace platform::windows
