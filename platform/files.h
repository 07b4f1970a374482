#pragma once

// Files, folders and disk space. Paths are texts as the system takes them; functions return false
// (an empty object, an empty list) on failure and show nothing. A File is closed by its owner's
// end, if not before.
// Linux: "\" separates names like "/", a drive such as C: is dropped, letter case counts, and a
// name that starts with a dot is a hidden file.
// Windows: what another program stands in the way of, since it has the file open, is tried again
// until it lets go, for 2 seconds at the most. That goes for CanBeRenamed, Delete, Rename,
// OpenForReading and Create; a file that is missing or read-only and a folder in the way fail at
// once.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::files {

/// Paths of the plain files that match; the last component may hold "*" and "?". Folders, hidden
/// files and system files are passed over. A path that the system rejects matches nothing.
/// Windows: short names count as well.
[[nodiscard]] std::vector<std::string> Find(const std::string& pattern);

/// True when the path, taken without wildcards, names anything that is not a folder.
[[nodiscard]] bool IsFile(const std::string& path);

/// True when the path, taken without wildcards, names a file, hidden or not, that Rename would
/// find. Windows: and could rename.
[[nodiscard]] bool CanBeRenamed(const std::string& path);

/// The name is free afterwards. Windows: fails while another program has the file open, before
/// Windows 10 even one that would let it be deleted. Linux: does not.
[[nodiscard]] bool Delete(const std::string& path);

/// Renames a file or moves it to another folder; never overwrites. Linux: within one file system.
[[nodiscard]] bool Rename(const std::string& oldPath, const std::string& newPath);

[[nodiscard]] bool FolderExists(const std::string& path);
[[nodiscard]] bool CreateFolder(const std::string& path);

struct CloseFile {
  void operator()(void* file) const;
};
using File = std::unique_ptr<void, CloseFile>;

/// Shares the file with every program.
[[nodiscard]] File OpenForReading(const std::string& path);

/// Creates the file, or empties the one that is there. Linux: as a file that may be executed, since
/// any may be a program.
[[nodiscard]] File Create(const std::string& path);

/// Length in bytes.
[[nodiscard]] std::optional<std::int64_t> Length(const File& file);

/// Fills the whole buffer from the current position; false when the file ends before.
[[nodiscard]] bool Read(const File& file, std::string& buffer);

/// Writes all of the bytes at the current position. Linux: the last ones, 16 KiB at the most, reach
/// the system when the file is closed.
[[nodiscard]] bool Write(const File& file, std::string_view bytes);

/// False when bytes that were written do not reach the system, which the owner's end would not
/// tell. Windows: waits until the disk has them; events are handled meanwhile. Linux: does not.
[[nodiscard]] bool Close(File file);

/// What the system says of a volume; all 0 on failure.
struct DiskSpace {
  std::uint32_t sectorsPerCluster = 0;
  std::uint32_t bytesPerSector = 0;
  std::uint32_t freeClusters = 0;
};

/// root: root folder of the volume, such as C:/. Windows: GetDiskFreeSpaceA. Linux: statvfs, of
/// which 32 bits tell no more than 2^32 - 1 free clusters.
[[nodiscard]] DiskSpace QueryDiskSpace(const std::string& root);

}  // namespace platform::files
