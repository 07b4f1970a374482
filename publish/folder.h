#pragma once

// The files of an application's folder, and what tells two such folders apart.

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace publish {

struct FolderFile {
  std::string name;  // below the folder, with backslashes, in the program's code page
  std::filesystem::path path;
};

/// By name in lower case: Windows does not tell letter case apart.
using Folder = std::map<std::string, FolderFile>;

/// The files of a folder and of those below it, but for the updater itself and for what fits an
/// excluded pattern: by its whole name where the pattern has a backslash, otherwise by the last
/// part of it. Patterns that leave something out are taken from idle. What the updater could not
/// install is told in problems, each in a sentence in UTF-8.
[[nodiscard]] Folder ListFolder(const std::filesystem::path& folder,
                                const std::vector<std::string>& excluded,
                                std::set<std::string>& idle, std::vector<std::string>& problems);

/// Whether a path leads, links followed, to a folder or into it.
[[nodiscard]] bool IsWithin(const std::filesystem::path& path, const std::filesystem::path& folder);

[[nodiscard]] bool HaveSameContent(const std::filesystem::path& a, const std::filesystem::path& b);

struct Difference {
  std::vector<FolderFile> added;
  std::vector<FolderFile> changed;  // as they are in the new folder
  std::vector<FolderFile> removed;
  std::vector<FolderFile> present;  // files of the old folder that are neither
};
[[nodiscard]] Difference Compare(const Folder& oldFolder, const Folder& newFolder);

}  // namespace publish
