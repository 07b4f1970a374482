#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace platform::windows_layer {

/// Loads a library of the operating system, such as "wininet.dll", by its full path in the system
/// folder, so that a file of that name beside the program is never taken for it. It stays loaded.
/// Where the system lacks it the process ends with a message of the system's.
[[nodiscard]] HMODULE LoadSystemLibrary(const char* name);

/// A function of a library under the type of its declaration; null when the library lacks it.
template <typename Function>
[[nodiscard]] Function* FunctionOf(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

/// Whether the system's loader can be called, or becomes free within that time. A component that
/// was left behind may hold its lock for ever; whoever then loads, frees or looks into a library
/// waits with it.
[[nodiscard]] bool LoaderIsFree(DWORD milliseconds);

/// How long the loader is waited for, in milliseconds: by what can do without it, by what cannot.
inline constexpr DWORD LongestOpening = 1000;
inline constexpr DWORD LongestLoading = 10'000;

/// As long as it lives, libraries are looked for in a component's folder, the program's and those
/// of PATH as well as in the system folder. Its end does not need the loader.
class WiderSearch {
 public:
  explicit WiderSearch(const std::string& componentFolder);
  ~WiderSearch();
  WiderSearch(const WiderSearch&) = delete;
  WiderSearch& operator=(const WiderSearch&) = delete;

 private:
  using RemoveFolder = BOOL WINAPI(void*);
  RemoveFolder* removeFolder = nullptr;  // null on systems that know one more folder only
  std::vector<void*> added;
};

}  // namespace platform::windows_layer
