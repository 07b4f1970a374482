#pragma once

// The files of an application's folder, and what tells two such folders apart.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace publish {

struct FolderFile {
  std::string name;  // below the folder, with backslashes, in the program's code page
  std::filesystem::path path;
};

/// By name in lower case: Windows does not tell letter case apart.
using Folder = std::map<std::string, FolderFile>;

/// The files of a folder and of those below it, but for the updater itself. What the updater could
/// not install is told in problems, each in a sentence in UTF-8.
[[nodiscard]] Folder ListFolder(const std::filesystem::path& folder,
                                std::vector<std::string>& problems);

struct Difference {
  std::vector<FolderFile> added;
  std::vector<FolderFile> changed;  // as they are in the new folder
  std::vector<FolderFile> removed;
};
[[nodiscard]] Difference Compare(const Folder& oldFolder, const Folder& newFolder);

}  // namespace publish
