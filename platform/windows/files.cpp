#include "platform/files.h"

#include <windows.h>

namespace platform::files {
namespace {

constexpr DWORD NotPlain = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

File Open(const std::string& path, DWORD access, DWORD disposition) {
  const HANDLE file = CreateFileA(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

DWORD AttributesOf(const std::string& path) { return GetFileAttributesA(path.c_str()); }

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

bool Delete(const std::string& path) { return DeleteFileA(path.c_str()) != FALSE; }

bool Rename(const std::string& oldPath, const std::string& newPath) {
  return MoveFileA(oldPath.c_str(), newPath.c_str()) != FALSE;
}

bool FolderExists(const std::string& path) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool CreateFolder(const std::string& path) {
  return CreateDirectoryA(path.c_str(), nullptr) != FALSE;
}

File OpenForReading(const std::string& path) { return Open(path, GENERIC_READ, OPEN_EXISTING); }

File Create(const std::string& path) { return Open(path, GENERIC_WRITE, CREATE_ALWAYS); }

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
  file.reset();
  return true;
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
