#include "platform/files.h"

#include <windows.h>

#include "platform/windows/background.h"
#include "platform/windows/libraries.h"

namespace platform::files {
namespace {

constexpr DWORD NotPlain = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
constexpr DWORD Refused = NotPlain | FILE_ATTRIBUTE_READONLY;  // for good, by some calls
constexpr DWORD ShareWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Milliseconds. A virus scanner or an indexer looks at a new file for less than a second.
constexpr DWORD LongestHold = 2000;
constexpr DWORD HoldPoll = 20;

DWORD AttributesOf(const std::string& path) { return GetFileAttributesA(path.c_str()); }

bool HasAttributes(const std::string& path, DWORD wanted) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) != 0;
}

File Open(const std::string& path, DWORD access, DWORD sharing, DWORD disposition, DWORD flags) {
  const HANDLE file =
      CreateFileA(path.c_str(), access, sharing, nullptr, disposition, flags, nullptr);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  return File(file);
}

/// A scanner inside the system may still have a file open that was deleted.
bool NameIsFree(const std::string& path) {
  SetLastError(ERROR_SUCCESS);
  return AttributesOf(path) == INVALID_FILE_ATTRIBUTES && GetLastError() != ERROR_ACCESS_DENIED;
}

/// A file that is deleted keeps its name until the last program that has it open closes it.
bool IsBeingDeleted(const std::string& path) {
  return !Open(path, FILE_READ_ATTRIBUTES, ShareWithAll, OPEN_EXISTING, 0) &&
         GetLastError() == ERROR_ACCESS_DENIED && !HasAttributes(path, FILE_ATTRIBUTE_DIRECTORY);
}

/// Whether what the system refused with this error may go well once other programs let go of the
/// files.
bool MayPass(DWORD error, const std::string& path, const std::string& newPath) {
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return true;
    case ERROR_ACCESS_DENIED:  // where there is nothing, it is for lack of rights
      return !NameIsFree(path) && !HasAttributes(path, Refused) && !HasAttributes(newPath, Refused);
    case ERROR_ALREADY_EXISTS:
      return IsBeingDeleted(newPath);
    default:
      return false;
  }
}

/// Calls an operation until it succeeds, fails for good, or the files have been held for too long;
/// returns its last result.
template <typename Operation>
auto OnceLetGo(const std::string& path, const std::string& newPath, Operation operation) {
  const DWORD start = GetTickCount();
  while (true) {
    auto result = operation();
    if (result || !MayPass(GetLastError(), path, newPath) ||
        GetTickCount() - start >= LongestHold) {
      return result;
    }
    Sleep(HoldPoll);
  }
}

using SetInformation = BOOL WINAPI(HANDLE file, int kind, void* information, DWORD size);

SetInformation* FindSetInformation() noexcept {
  return windows_layer::FunctionOf<SetInformation>(GetModuleHandleA("kernel32.dll"),
                                                   "SetFileInformationByHandle");
}

// Before any component is loaded, which might keep the loader's lock for ever.
SetInformation* const setInformation = FindSetInformation();

/// From Windows 10 on a name can be freed while other programs, which share the file's deletion,
/// keep the content that they have open.
bool DeleteName(const std::string& path) {
  constexpr int FileDispositionInfoEx = 21;  // numbers of winbase.h and winnt.h
  DWORD deleteAsPosixDoes = 3;
  if (setInformation == nullptr) return false;
  const File file = Open(path, DELETE, ShareWithAll, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT);
  return file && setInformation(file.get(), FileDispositionInfoEx, &deleteAsPosixDoes,
                                sizeof deleteAsPosixDoes) != FALSE;
}

/// Elsewhere a file that another program has open is not deleted at all: its name would stay taken,
/// and its content would be lost all the same.
bool DeleteAlone(const std::string& path) {
  if (Open(path, DELETE, 0, OPEN_EXISTING,
           FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT)) {
    return true;
  }
  if (GetLastError() != ERROR_SHARING_VIOLATION) return false;
  if (DeleteName(path)) return true;
  SetLastError(ERROR_SHARING_VIOLATION);
  return false;
}

/// Some file systems cannot be told to store, and keep nothing back.
bool Store(HANDLE file) {
  if (FlushFileBuffers(file) != FALSE) return true;
  const DWORD error = GetLastError();
  return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

}  // namespace

void CloseFile::operator()(void* file) const { CloseHandle(file); }

std::vector<std::string> Find(const std::string& pattern) {
  if (pattern.find_first_of("*?") == std::string::npos) {  // quicker than a search
    const DWORD attributes = AttributesOf(pattern);
    const bool isPlain = attributes != INVALID_FILE_ATTRIBUTES && (attributes & NotPlain) == 0;
    return isPlain ? std::vector{pattern} : std::vector<std::string>();
  }
  std::vector<std::string> found;
  WIN32_FIND_DATAA entry;
  const HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return found;
  const auto separator = pattern.find_last_of("\\/:");
  const std::string folder(
      pattern.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
  do {
    if ((entry.dwFileAttributes & NotPlain) == 0) found.push_back(folder + entry.cFileName);
  } while (FindNextFileA(search, &entry) != FALSE);
  FindClose(search);
  return found;
}

bool IsFile(const std::string& path) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool CanBeRenamed(const std::string& path) {
  return OnceLetGo(path, path, [&] {
    return Open(path, DELETE, ShareWithAll, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT) != nullptr;
  });
}

bool Delete(const std::string& path) {
  bool deleted = false;
  return OnceLetGo(path, path, [&] {
    deleted = deleted || DeleteAlone(path);
    return deleted && NameIsFree(path);
  });
}

bool Rename(const std::string& oldPath, const std::string& newPath) {
  return OnceLetGo(oldPath, newPath,
                   [&] { return MoveFileA(oldPath.c_str(), newPath.c_str()) != FALSE; });
}

bool FolderExists(const std::string& path) { return HasAttributes(path, FILE_ATTRIBUTE_DIRECTORY); }

bool CreateFolder(const std::string& path) {
  return CreateDirectoryA(path.c_str(), nullptr) != FALSE;
}

File OpenForReading(const std::string& path) {
  return OnceLetGo(path, path,
                   [&] { return Open(path, GENERIC_READ, ShareWithAll, OPEN_EXISTING, 0); });
}

File Create(const std::string& path) {
  return OnceLetGo(path, path, [&] {
    return Open(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
  });
}

std::optional<std::int64_t> Length(const File& file) {
  LARGE_INTEGER length;
  if (GetFileSizeEx(file.get(), &length) == FALSE) return std::nullopt;
  return length.QuadPart;
}

bool Read(const File& file, std::string& buffer) {
  DWORD count = 0;
  return ReadFile(file.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) !=
             FALSE &&
         count == buffer.size();
}

bool Write(const File& file, std::string_view bytes) {
  DWORD count = 0;
  return WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) !=
             FALSE &&
         count == bytes.size();
}

bool Close(File file) {
  bool stored = false;
  windows_layer::RunInBackground([&] { stored = Store(file.get()); });  // a slow disk takes seconds
  return stored;
}

DiskSpace QueryDiskSpace(const std::string& root) {
  DWORD sectorsPerCluster = 0;
  DWORD bytesPerSector = 0;
  DWORD freeClusters = 0;
  DWORD totalClusters = 0;
  GetDiskFreeSpaceA(root.c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters,
                    &totalClusters);
  return {sectorsPerCluster, bytesPerSector, freeClusters};
}

}  // namespace platform::files
