#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <utility>

#include "platform/linux/paths.h"

namespace platform::files {
namespace {

using linux_layer::ToProgramPath;
using linux_layer::ToSystemPath;

constexpr mode_t ModeOfNewFolders = 0777;
/// Whatever was downloaded may be a program; the user's mask takes away from this.
constexpr mode_t ModeOfNewFiles = 0777;

/// A stream of the C library with a buffer of its own, large enough for few calls of the system.
class OpenFile {
 public:
  OpenFile(const std::string& systemPath, int flags, const char* mode) {
    const int descriptor = open(systemPath.c_str(), flags | O_CLOEXEC, ModeOfNewFiles);
    if (descriptor < 0) return;
    stream = fdopen(descriptor, mode);
    if (stream == nullptr) {
      close(descriptor);
      return;
    }
    (void)std::setvbuf(stream, buffer.data(), _IOFBF, buffer.size());  // fails for bad modes only
  }
  ~OpenFile() { (void)Close(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// Null when the file could not be opened.
  [[nodiscard]] FILE* Stream() const { return stream; }

  bool Close() { return stream == nullptr || std::fclose(std::exchange(stream, nullptr)) == 0; }

 private:
  static constexpr std::size_t BufferSize = 16'384;  // bytes; a larger one gains little

  FILE* stream = nullptr;
  std::array<char, BufferSize> buffer;
};

FILE* StreamOf(const File& file) { return static_cast<const OpenFile*>(file.get())->Stream(); }

File Open(const std::string& path, int flags, const char* mode) {
  auto file = std::make_unique<OpenFile>(ToSystemPath(path), flags, mode);
  return File(file->Stream() == nullptr ? nullptr : file.release());
}

/// The kind of file behind a path, or 0.
mode_t KindOf(const std::string& systemPath) {
  struct stat status = {};
  return stat(systemPath.c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

/// Whether a name fits a pattern with "*" and "?". Only the last "*" met is ever tried longer.
bool Matches(std::string_view name, std::string_view pattern) {
  std::size_t inName = 0;
  std::size_t inPattern = 0;
  std::size_t star = std::string_view::npos;
  std::size_t behindStar = 0;  // in the name: where what follows the star is tried
  while (inName < name.size()) {
    const char wanted = inPattern < pattern.size() ? pattern[inPattern] : '\0';
    if (wanted == '*') {
      star = inPattern++;
      behindStar = inName;
    } else if (wanted == '?' || wanted == name[inName]) {
      ++inName;
      ++inPattern;
    } else if (star != std::string_view::npos) {
      inPattern = star + 1;
      inName = ++behindStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

std::vector<std::string> NamesIn(const std::string& systemFolder) {
  namespace fs = std::filesystem;
  std::vector<std::string> names;
  std::error_code failure;
  for (fs::directory_iterator entry(systemFolder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    names.push_back(ToProgramPath(entry->path().filename().string()));
  }
  return names;
}

bool IsVisiblePlainFile(const std::string& path) {
  const std::string systemPath = ToSystemPath(path);
  return !linux_layer::FileNameOf(systemPath).starts_with('.') && KindOf(systemPath) == S_IFREG;
}

/// Also for file systems that cannot be told not to overwrite.
bool LinkAndUnlink(const std::string& oldPath, const std::string& newPath) {
  return link(oldPath.c_str(), newPath.c_str()) == 0 && unlink(oldPath.c_str()) == 0;
}

bool CopyAndUnlink(const std::string& oldPath, const std::string& newPath) {
  std::error_code failure;
  if (std::filesystem::exists(newPath, failure)) return false;
  if (!std::filesystem::copy_file(oldPath, newPath, failure)) {
    unlink(newPath.c_str());  // half a file is none
    return false;
  }
  return unlink(oldPath.c_str()) == 0;
}

}  // namespace

void CloseFile::operator()(void* file) const { delete static_cast<OpenFile*>(file); }

std::vector<std::string> Find(const std::string& pattern) {
  const auto separator = pattern.find_last_of("\\/:");
  const std::string folder = pattern.substr(0, separator == std::string::npos ? 0 : separator + 1);
  const std::string last = pattern.substr(folder.size());
  std::vector<std::string> found;
  if (last.find_first_of("*?") == std::string::npos) {
    if (IsVisiblePlainFile(pattern)) found.push_back(pattern);
    return found;
  }
  const std::string systemFolder = ToSystemPath(folder);
  for (const auto& name : NamesIn(systemFolder.empty() ? "." : systemFolder)) {
    if (Matches(name, last == "*.*" ? "*" : last) && IsVisiblePlainFile(folder + name)) {
      found.push_back(folder + name);
    }
  }
  return found;
}

bool IsFile(const std::string& path) {
  const mode_t kind = KindOf(ToSystemPath(path));
  return kind != 0 && kind != S_IFDIR;
}

bool CanBeRenamed(const std::string& path) { return IsFile(path); }

bool Delete(const std::string& path) { return unlink(ToSystemPath(path).c_str()) == 0; }

bool Rename(const std::string& oldPath, const std::string& newPath) {
  const std::string from = ToSystemPath(oldPath);
  const std::string to = ToSystemPath(newPath);
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno == EXDEV) return CopyAndUnlink(from, to);
  return errno == EINVAL && LinkAndUnlink(from, to);
}

bool FolderExists(const std::string& path) { return KindOf(ToSystemPath(path)) == S_IFDIR; }

bool CreateFolder(const std::string& path) {
  return mkdir(ToSystemPath(path).c_str(), ModeOfNewFolders) == 0;
}

File OpenForReading(const std::string& path) { return Open(path, O_RDONLY, "r"); }

File Create(const std::string& path) { return Open(path, O_WRONLY | O_CREAT | O_TRUNC, "w"); }

std::optional<std::int64_t> Length(const File& file) {
  struct stat status = {};
  if (fstat(fileno(StreamOf(file)), &status) != 0) return std::nullopt;
  return status.st_size;
}

bool Read(const File& file, std::string& buffer) {
  return std::fread(buffer.data(), 1, buffer.size(), StreamOf(file)) == buffer.size();
}

bool Write(const File& file, std::string_view bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), StreamOf(file)) == bytes.size();
}

bool Close(File file) { return static_cast<OpenFile*>(file.get())->Close(); }

DiskSpace QueryDiskSpace(const std::string& root) {
  constexpr std::uint32_t BytesPerSector = 512;
  constexpr std::uint64_t Most = std::numeric_limits<std::uint32_t>::max();
  struct statvfs status = {};
  if (statvfs(ToSystemPath(root).c_str(), &status) != 0) return {};
  // Larger clusters until 32 bits count them all.
  std::uint64_t sectors = std::max<std::uint64_t>(1, status.f_frsize / BytesPerSector);
  std::uint64_t free = status.f_bavail;
  for (; free > Most; sectors *= 2) free /= 2;
  return {static_cast<std::uint32_t>(std::min(sectors, Most)), BytesPerSector,
          static_cast<std::uint32_t>(free)};
}

}  // namespace platform::files
