#include "publish/plan.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

#include "base/text.h"
#include "platform/files.h"
#include "publish/key_files.h"
#include "publish/progress.h"
#include "publish/script_text.h"
#include "publish/source.h"
#include "publish/urls.h"
#include "publish/versions.h"
#include "publish/words.h"
#include "script/version.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
using modPrincipal::VersionToNumber;

// A file's length is a signed 32-bit number to the program.
constexpr std::uintmax_t MostBytes = INT32_MAX;

/// A companion that the updater writes beside a file must not be a file of the application.
void CheckCompanions(const Plan& plan, Problems& problems) {
  const auto check = [&](const FolderFile& file, const char* suffix) {
    const std::string companion = modFunciones::LowerCase(file.name + suffix);
    if (!plan.oldFolder.contains(companion) && !plan.newFolder.contains(companion)) return;
    const std::string name = modFunciones::ToUtf8(file.name);
    problems.push_back("The updater would write over " + name + suffix + " while it puts " + name +
                       " in place.");
  };
  for (const auto* files : {&plan.difference.added, &plan.difference.changed}) {
    for (const auto& file : *files) check(file, ".tmp");
  }
  for (const auto& name : plan.order.wishes.backups) check({name, {}}, ".bak");
  for (const auto& name : plan.order.wishes.kept) check({name, {}}, FreshSuffix);
}

/// A file cannot become a folder, nor a folder a file.
void CheckFoldersAgainstFiles(const Folder& files, const Folder& others, Problems& problems) {
  for (const auto& [key, file] : files) {
    for (auto at = key.find('\\'); at != std::string::npos; at = key.find('\\', at + 1)) {
      if (!others.contains(key.substr(0, at))) continue;
      problems.push_back(modFunciones::ToUtf8(file.name.substr(0, at)) +
                         " is a file in one version and a folder in the other.");
    }
  }
}

/// An empty folder is no file of either version, but stays in the way of one.
void CheckEmptyFolders(const Plan& plan, Problems& problems) {
  for (const auto& file : plan.difference.added) {
    const fs::path old = plan.order.oldFolder / file.path.lexically_relative(plan.order.newFolder);
    if (!fs::is_directory(old) || !fs::is_empty(old)) continue;
    problems.push_back(modFunciones::ToUtf8(file.name) +
                       " is a folder in the old version and a file in the new one.");
  }
}

void CheckWishedNames(const Plan& plan, Problems& problems) {
  const Wishes& wishes = plan.order.wishes;
  for (const auto* names : {&wishes.backups, &wishes.kept, &wishes.components}) {
    for (const auto& name : *names) {
      const std::string key = modFunciones::LowerCase(name);
      if (plan.oldFolder.contains(key) || plan.newFolder.contains(key)) continue;
      problems.push_back("There is no file " + modFunciones::ToUtf8(name) + " in either folder.");
    }
  }
  for (const auto& name : wishes.kept) {
    if (name.find('%') == std::string::npos) continue;
    problems.push_back("--keep " + modFunciones::ToUtf8(name) +
                       ": the command that looks whether it is there would replace the %.");
  }
}

/// A component is loaded and asked for its entry point by name.
void CheckComponents(const Plan& plan, Problems& problems) {
  for (const auto& name : plan.order.wishes.components) {
    const std::string key = modFunciones::LowerCase(name);
    const Folder& folder = plan.newFolder.contains(key) ? plan.newFolder : plan.oldFolder;
    const auto file = folder.find(key);
    if (file == folder.end()) continue;  // CheckWishedNames tells
    const auto content = ReadFile(file->second.path);
    if (!content || content->find("DllRegisterServer") != std::string::npos) continue;
    problems.push_back(modFunciones::ToUtf8(name) +
                       " is no component, it has no DllRegisterServer: leave its --register out.");
  }
}

void CheckPrivateKeys(const Folder& folder, Problems& problems) {
  for (const auto& [key, file] : folder) {
    if (!IsPrivateKeyFile(file.path)) continue;
    problems.push_back(modFunciones::ToUtf8(file.name) +
                       " holds a private key, which others would get: keep it elsewhere, or leave "
                       "it out with --exclude.");
  }
}

void CheckDifference(const Difference& difference, Problems& problems) {
  std::uintmax_t bytes = 0;
  for (const auto* files : {&difference.added, &difference.changed}) {
    for (const auto& file : *files) {
      const auto size = fs::file_size(file.path);
      bytes += size;
      if (size <= MostBytes) continue;
      problems.push_back(modFunciones::ToUtf8(file.name) +
                         " has more than 2,147,483,647 bytes, and the updater counts no further.");
    }
  }
  const bool putsFiles = !difference.added.empty() || !difference.changed.empty();
  if (!putsFiles && difference.removed.empty()) {
    problems.emplace_back("The folders are alike: there is nothing to bring up to date.");
  } else if (putsFiles && bytes == 0) {
    problems.emplace_back("All new files are empty, and the updater downloads nothing then.");
  }
}

/// The names that a URL may mean: the folder may have been found elsewhere when a line was written.
void AddEnds(const std::string& url, std::unordered_set<std::string>& names) {
  const std::string path = modFunciones::ToUtf8(url.substr(0, url.find('?')));
  for (auto at = path.find('/'); at != std::string::npos; at = path.find('/', at + 1)) {
    names.insert(Decoded(path.substr(at + 1)));
  }
}

}  // namespace

void CheckOrder(const Order& order, Problems& problems) {
  CheckVersion(order.from, problems);
  CheckVersion(order.to, problems);
  if (VersionToNumber(order.from) >= VersionToNumber(order.to)) {
    problems.push_back("The version " + order.to + " does not come after " + order.from + ".");
  }
  if (!IsUrl(order.url)) problems.push_back(order.url + " is no http or https URL.");
  for (const auto& folder : {order.oldFolder, order.newFolder}) {
    if (!fs::is_directory(folder)) problems.push_back(Utf8Of(folder) + " is no folder.");
    if (IsWithin(order.site, folder) || IsWithin(folder, order.site)) {
      problems.push_back(
          "The upload folder " + Utf8Of(order.site) + " and " + Utf8Of(folder) +
          " lie one in the other: give the upload folder a place of its own with --site.");
    }
  }
}

void CheckFolders(const Plan& plan, Problems& problems) {
  CheckDifference(plan.difference, problems);
  CheckCompanions(plan, problems);
  CheckFoldersAgainstFiles(plan.oldFolder, plan.newFolder, problems);
  CheckFoldersAgainstFiles(plan.newFolder, plan.oldFolder, problems);
  CheckEmptyFolders(plan, problems);
  CheckWishedNames(plan, problems);
  CheckComponents(plan, problems);
  CheckPrivateKeys(plan.newFolder, problems);
}

void CheckUploads(Plan& plan, Problems& problems) {
  std::vector<std::string> others;
  std::size_t compared = 0;
  StartProgress("Comparing files", plan.uploads.size());
  for (auto& [file, target, isPublished] : plan.uploads) {
    ShowProgress(++compared);
    const fs::path there = plan.order.site / target;
    isPublished = HaveSameContent(file, there);
    if (!isPublished && fs::exists(there)) others.push_back(Utf8Of(target));
  }
  EndProgress();
  if (others.empty() || plan.order.force) return;
  problems.push_back("The upload folder has other content already for " + Some(others) +
                     ", which users may have fetched: make a new version, or say --force.");
}

std::vector<std::string> Irreplaceable(const Plan& plan) {
  std::vector<std::string> names;
  for (const auto* listed : {&plan.difference.changed, &plan.difference.removed}) {
    for (const auto& file : *listed) {
      if (AreAmong(plan.order.wishes.kept, file.name)) continue;
      const fs::path& old = plan.oldFolder.at(modFunciones::LowerCase(file.name)).path;
      std::error_code error;
      const auto rights = fs::status(old, error).permissions();
      const bool isReadOnly = (rights & fs::perms::owner_write) == fs::perms::none;
      const auto path = modFunciones::FromUtf8(Utf8Of(old));
      const bool isHidden =
          path && platform::files::IsFile(*path) && platform::files::Find(*path).empty();
      if (isReadOnly || isHidden) names.push_back(modFunciones::ToUtf8(file.name));
    }
  }
  return names;
}

std::vector<std::string> Unnamed(const Plan& plan) {
  std::unordered_set<std::string> named = {ScriptName};
  for (const auto& upload : plan.uploads) named.insert(Utf8Of(upload.target));
  for (const auto& line : CutWithNumbers(plan.script).lines) {
    for (const auto& field : line) AddEnds(field, named);
  }
  std::vector<std::string> unnamed;
  std::error_code error;
  for (const auto& entry : fs::recursive_directory_iterator(plan.order.site, error)) {
    const std::string name = Utf8Of(entry.path().lexically_relative(plan.order.site));
    if (entry.is_regular_file() && !named.contains(name)) unnamed.push_back(name);
  }
  std::sort(unnamed.begin(), unnamed.end());
  return unnamed;
}

}  // namespace publish
