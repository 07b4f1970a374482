#include "platform/windows/libraries.h"

#include <string>

namespace platform::windows {
namespace {

using SetDefaultFolders = BOOL WINAPI(DWORD);
constexpr DWORD SystemFolderOnly = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32

/// Libraries that the system's own ones load later come from the system folder as well. A system
/// that cannot be told so (XP, and Vista and 7 without their updates) leaves at least the current
/// folder out.
bool SearchSystemFolderOnly() noexcept {
  const auto setFolders =
      FunctionOf<SetDefaultFolders>(GetModuleHandleA("kernel32.dll"), "SetDefaultDllDirectories");
  if (setFolders != nullptr && setFolders(SystemFolderOnly) != FALSE) return true;
  return SetDllDirectoryA("") != FALSE;
}

// Before main, and before anything can be loaded.
[[maybe_unused]] const bool searchIsSafe = SearchSystemFolderOnly();

}  // namespace

HMODULE LoadSystemLibrary(const char* name) {
  std::string path(MAX_PATH, '\0');
  path.resize(GetSystemDirectoryA(path.data(), MAX_PATH));
  path = path + '\\' + name;
  const HMODULE library = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) FatalAppExitA(0, path.c_str());
  return library;
}

}  // namespace platform::windows
