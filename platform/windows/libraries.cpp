#include "platform/windows/libraries.h"

#include <algorithm>
#include <cstdlib>

#include "platform/system.h"

namespace platform::windows_layer {
namespace {

using SetDefaultFolders = BOOL WINAPI(DWORD);
using AddFolder = void* WINAPI(const wchar_t*);
// LOAD_LIBRARY_SEARCH_SYSTEM32 and LOAD_LIBRARY_SEARCH_USER_DIRS, of which there are none but for
// WiderSearch: what SetDefaultDllDirectories has allowed it cannot be told to forbid again.
constexpr DWORD SystemAndAddedFolders = 0x800 | 0x400;

/// Libraries that the system's own ones load later come from the system folder as well. A system
/// that cannot be told so (XP, and Vista and 7 without their updates) leaves at least the current
/// folder out.
bool SearchSystemFolderOnly() noexcept {
  const auto setFolders =
      FunctionOf<SetDefaultFolders>(GetModuleHandleA("kernel32.dll"), "SetDefaultDllDirectories");
  if (setFolders != nullptr && setFolders(SystemAndAddedFolders) != FALSE) return true;
  return SetDllDirectoryA("") != FALSE;
}

// Before main, and before anything can be loaded.
[[maybe_unused]] const bool searchIsSafe = SearchSystemFolderOnly();

std::string SystemFolder() {
  std::string path(MAX_PATH, '\0');
  path.resize(GetSystemDirectoryA(path.data(), MAX_PATH));
  return path;
}

std::wstring ToWide(const std::string& path) {  // by the code page of the A functions
  const int length = static_cast<int>(path.size());
  std::wstring wide(path.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, path.data(), length, wide.data(), length)));
  return wide;
}

DWORD WINAPI DoNothing(void* /*argument*/) { return 0; }

}  // namespace

HMODULE LoadSystemLibrary(const char* name) {
  const std::string path = SystemFolder() + '\\' + name;
  const HMODULE library = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) FatalAppExitA(0, path.c_str());
  return library;
}

bool LoaderIsFree(DWORD milliseconds) {
  // A thread cannot begin without the lock.
  const HANDLE thread = CreateThread(nullptr, 0, DoNothing, nullptr, 0, nullptr);
  const bool isFree = WaitForSingleObject(thread, milliseconds) == WAIT_OBJECT_0;
  CloseHandle(thread);
  return isFree;
}

WiderSearch::WiderSearch(const std::string& componentFolder) {
  const HMODULE kernel = GetModuleHandleA("kernel32.dll");
  const auto addFolder = FunctionOf<AddFolder>(kernel, "AddDllDirectory");
  removeFolder = FunctionOf<RemoveFolder>(kernel, "RemoveDllDirectory");
  if (addFolder == nullptr || removeFolder == nullptr) {
    SetDllDirectoryA(componentFolder.c_str());  // the others are searched there anyway
    return;
  }
  std::vector<std::string> folders = {componentFolder, system::ExecutableFolder(), SystemFolder()};
  const char* variable = std::getenv("PATH");
  const std::string path = variable != nullptr ? variable : "";
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = path.find(';', start);
    folders.push_back(path.substr(start, end - start));
  }
  // The order is not promised; the one added last is searched first.
  std::reverse(folders.begin(), folders.end());
  for (const auto& folder : folders) {
    if (void* const cookie = addFolder(ToWide(folder).c_str())) added.push_back(cookie);
  }
}

WiderSearch::~WiderSearch() {
  if (removeFolder == nullptr) SetDllDirectoryA("");
  for (void* const cookie : added) removeFolder(cookie);
}

}  // namespace platform::windows_layer
