#include "publish/folder.h"

#include <algorithm>

#include "base/text.h"
#include "publish/source.h"
#include "script/commands.h"

namespace publish {
namespace {

namespace fs = std::filesystem;

// At the root of the folder; the header of the script brings the updater up to date.
constexpr std::string_view UpdaterNames[] = {"kestrane.exe", "kestranetmp.exe"};

/// Why a script cannot name a file; empty when it can.
std::string WhyUnusable(const std::string& utf8Name) {
  if (!modFunciones::FromUtf8(utf8Name)) return "has characters that Windows-1252 lacks";
  const auto isControl = [](char character) { return character >= 0 && character < ' '; };
  if (utf8Name.find_first_of("|<>:\"?*\\") != std::string::npos ||
      std::any_of(utf8Name.begin(), utf8Name.end(), isControl)) {
    return "has characters that no file of Windows may have";
  }
  if (utf8Name.ends_with(' ') || utf8Name.ends_with('.')) {
    return "ends with a blank or a full stop, which Windows takes away";
  }
  for (const auto& macro : modPrincipal::Macros) {
    if (utf8Name.find(macro) != std::string::npos) return "holds a macro of the script";
  }
  return "";
}

std::string WithReason(const std::string& utf8Name, const std::string& why) {
  return "The name " + utf8Name + " " + why + ".";
}

bool IsUpdater(const std::string& lowerName) {
  return std::find(std::begin(UpdaterNames), std::end(UpdaterNames), lowerName) !=
         std::end(UpdaterNames);
}

bool HaveSameContent(const FolderFile& a, const FolderFile& b) {
  std::error_code error;
  return fs::file_size(a.path, error) == fs::file_size(b.path, error) &&
         ReadFile(a.path) == ReadFile(b.path);
}

}  // namespace

Folder ListFolder(const fs::path& folder, std::vector<std::string>& problems) {
  Folder files;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = Utf8Of(entry->path().lexically_relative(folder));
    const std::string why = WhyUnusable(name);
    if (!why.empty()) problems.push_back(WithReason(name, why));
    if (!why.empty() || entry->is_directory()) continue;
    std::string ansiName = *modFunciones::FromUtf8(name);
    std::replace(ansiName.begin(), ansiName.end(), '/', '\\');
    const std::string lowerName = modFunciones::LowerCase(ansiName);
    if (IsUpdater(lowerName)) continue;
    if (!files.insert({lowerName, {ansiName, entry->path()}}).second) {
      problems.push_back("Another name differs from " + name + " in letter case only.");
    }
  }
  if (error) problems.push_back("The folder " + Utf8Of(folder) + " cannot be read.");
  return files;
}

Difference Compare(const Folder& oldFolder, const Folder& newFolder) {
  Difference difference;
  for (const auto& [key, file] : newFolder) {
    const auto old = oldFolder.find(key);
    if (old == oldFolder.end()) {
      difference.added.push_back(file);
    } else if (file.name != old->second.name || !HaveSameContent(file, old->second)) {
      difference.changed.push_back(file);
    }
  }
  for (const auto& [key, file] : oldFolder) {
    if (!newFolder.contains(key)) difference.removed.push_back(file);
  }
  return difference;
}

}  // namespace publish
