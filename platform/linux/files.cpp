#include "platform/files.h"

#include <fcntl.h>
#include <glob.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <span>
#include <utility>

#include "base/replace.h"
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

bool IsVisiblePlainFile(const std::string& path) {
  const std::string systemPath = ToSystemPath(path);
  return !linux_layer::FileNameOf(systemPath).starts_with('.') && KindOf(systemPath) == S_IFREG;
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
  // What a shell would take for a set of characters stands for itself.
  const std::string systemPattern =
      modFunciones::ReplaceAll(ToSystemPath(folder + (last == "*.*" ? "*" : last)), "[", "\\[");
  glob_t matches = {};
  const bool any = glob(systemPattern.c_str(), 0, nullptr, &matches) == 0;
  for (const char* match : std::span(matches.gl_pathv, any ? matches.gl_pathc : 0)) {
    const std::string path = folder + ToProgramPath(linux_layer::FileNameOf(match));
    if (IsVisiblePlainFile(path)) found.push_back(path);
  }
  globfree(&matches);
  return found;
}

bool IsFile(const std::string& path) {
  const mode_t kind = KindOf(ToSystemPath(path));
  return kind != 0 && kind != S_IFDIR;
}

bool CanBeRenamed(const std::string& path) { return IsFile(path); }

bool Delete(const std::string& path) { return unlink(ToSystemPath(path).c_str()) == 0; }

bool Rename(const std::string& oldPath, const std::string& newPath) {
  const std::string to = ToSystemPath(newPath);
  struct stat there = {};
  return lstat(to.c_str(), &there) != 0 &&
         std::rename(ToSystemPath(oldPath).c_str(), to.c_str()) == 0;
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
  struct statvfs status = {};
  if (statvfs(ToSystemPath(root).c_str(), &status) != 0) return {};
  const auto free =
      std::min<std::uint64_t>(status.f_bavail, std::numeric_limits<std::uint32_t>::max());
  return {static_cast<std::uint32_t>(status.f_frsize / BytesPerSector), BytesPerSector,
          static_cast<std::uint32_t>(free)};
}

}  // namespace platform::files
