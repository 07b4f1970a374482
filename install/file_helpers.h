#pragma once

// Plain file accesses. None of them shows a message: callers choose the words. Text holds one byte
// a character, so a file that is read and written again comes out identical.

#include <string>
#include <string_view>

namespace modFunciones {

/// True when the path names a plain file. Folders, hidden files and system files do not count. The
/// last component may hold "*" and "?". False as well for a path that the system rejects.
[[nodiscard]] bool FileExists(std::string_view path);

/// Deletes the file, or each one that matches. A path that FileExists does not find counts as
/// deleted; false when a deletion failed.
[[nodiscard]] bool FileDelete(std::string_view path);

/// Renames or moves a file. False when it fails, and when the new path is taken.
[[nodiscard]] bool FileRename(std::string_view oldPath, std::string_view newPath);

/// The whole content; empty when the file is missing, empty or unreadable.
[[nodiscard]] std::string FileReadAll(std::string_view path);

/// Replaces the file, if there is one, by one with this content.
[[nodiscard]] bool FileWriteAll(std::string_view path, std::string_view content);

}  // namespace modFunciones
