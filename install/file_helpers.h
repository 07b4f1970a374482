#pragma once

// Plain file accesses. None of them shows a message: callers choose the words. Text holds one byte
// a character, so a file that is read and written again comes out identical.

#include <string>
#include <string_view>

namespace modFunciones {

/// True when the path names a plain file. Folders, hidden files and system files do not count. The
/// last component may hold "*" and "?". False as well for a path that the system rejects.
[[nodiscard]] bool FileExists(const std::string& path);

/// Deletes the file, or each one that matches. A path that FileExists does not find counts as
/// deleted; false when a deletion failed.
[[nodiscard]] bool FileDelete(const std::string& path);

/// Renames or moves a file. False when it fails, and when the new path is taken.
[[nodiscard]] bool FileRename(const std::string& oldPath, const std::string& newPath);

/// The whole content; empty when the file is missing, empty or unreadable.
[[nodiscard]] std::string FileReadAll(const std::string& path);

/// Replaces the file, if there is one, by one with this content. On failure the old one is there,
/// or none.
[[nodiscard]] bool FileWriteAll(const std::string& path, std::string_view content);

}  // namespace modFunciones
