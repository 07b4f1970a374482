#include "publish/make.h"

#include <algorithm>
#include <fstream>

#include "base/text.h"
#include "publish/check.h"
#include "publish/history.h"
#include "publish/progress.h"
#include "publish/script_text.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "script/version.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
using modPrincipal::VersionToNumber;
using Problems = std::vector<std::string>;

constexpr const char* UpdaterName = "Kestrane.exe";

/// The folders and what is to be made of them.
struct Plan {
  Order order;
  Folder oldFolder;
  Folder newFolder;
  Difference difference;
  std::string script;         // the history, then the new script
  fs::path newUpdater;        // to be uploaded; empty: none
  std::string updaterFolder;  // of the upload folder, with a "/" at its end
};

std::string WithSlash(const std::string& url) { return url.ends_with('/') ? url : url + "/"; }

void CheckOrder(const Order& order, Problems& problems) {
  for (const auto& version : {order.from, order.to}) {
    if (VersionToNumber(version) == 0) problems.push_back(version + " is no version.");
  }
  if (VersionToNumber(order.from) >= VersionToNumber(order.to)) {
    problems.push_back("The version " + order.to + " does not come after " + order.from + ".");
  }
  if (!IsUrl(order.url)) problems.push_back(order.url + " is no http or https URL.");
  for (const auto& folder : {order.oldFolder, order.newFolder}) {
    if (!fs::is_directory(folder)) problems.push_back(Utf8Of(folder) + " is no folder.");
  }
}

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
  for (const auto* names : {&plan.order.wishes.backups, &plan.order.wishes.components}) {
    for (const auto& name : *names) {
      const std::string key = modFunciones::LowerCase(name);
      if (plan.oldFolder.contains(key) || plan.newFolder.contains(key)) continue;
      problems.push_back("There is no file " + modFunciones::ToUtf8(name) + " in either folder.");
    }
  }
}

void CheckDifference(const Difference& difference, Problems& problems) {
  std::uintmax_t bytes = 0;
  for (const auto* files : {&difference.added, &difference.changed}) {
    for (const auto& file : *files) bytes += fs::file_size(file.path);
  }
  const bool putsFiles = !difference.added.empty() || !difference.changed.empty();
  if (!putsFiles && difference.removed.empty()) {
    problems.emplace_back("The folders are alike: there is nothing to bring up to date.");
  } else if (putsFiles && bytes == 0) {
    problems.emplace_back("All new files are empty, and the updater downloads nothing then.");
  }
}

/// What the header says: what the publisher said, otherwise the updater in the new folder when it
/// is newer than what the script offers.
void PlanHeader(Plan& plan, Problems& problems) {
  const Order& order = plan.order;
  if (!order.updaterUrl.empty()) {
    SetHeader(plan.script, order.updaterVersion + "|" + order.updaterUrl);
    return;
  }
  const Script history = CutWithNumbers(plan.script);
  const std::string offered = history.lines.empty() ? "" : FieldAt(history.lines[0], 0);
  const fs::path updater = order.newFolder / UpdaterName;
  const std::string version = RecordedVersion(ReadFile(updater).value_or(""));
  if (VersionToNumber(version) > VersionToNumber(offered)) {
    plan.newUpdater = updater;
    plan.updaterFolder = "kestrane/" + version + "/";
    SetHeader(plan.script, version + "|" + order.url + plan.updaterFolder + UpdaterName);
  } else if (offered.empty()) {
    problems.emplace_back(
        "The script needs the updater's version and URL: put Kestrane.exe into the new folder, or "
        "name them with --updater.");
  }
}

Difference Everything(const Folder& folder) {
  Difference difference;
  for (const auto& [key, file] : folder) difference.changed.push_back(file);
  return difference;
}

void PlanScript(Plan& plan) {
  const Order& order = plan.order;
  if (!order.name.empty()) SetName(plan.script, order.name);
  PutBlock(plan.script, BlockFor("=", order.from, plan.difference, order.wishes), order.from);
  if (!order.coversOlder) return;
  // Nobody knows what those have, so all of it is kept.
  Wishes wishes = order.wishes;
  for (const auto& [key, file] : plan.newFolder) wishes.backups.push_back(file.name);
  AppendBlock(plan.script, BlockFor("<", order.to, Everything(plan.newFolder), wishes));
}

void CheckScript(const Plan& plan, Problems& problems) {
  for (const auto& [severity, line, text] :
       Check(CutWithNumbers(plan.script), {plan.order.to, ""})) {
    if (severity == Severity::Warning) continue;
    problems.push_back("The script would not do, in its line " + std::to_string(line) + ": " +
                       modFunciones::ToUtf8(text));
  }
}

bool Copy(const fs::path& file, const fs::path& target) {
  std::error_code error;
  fs::create_directories(target.parent_path(), error);
  return fs::copy_file(file, target, fs::copy_options::overwrite_existing, error);
}

bool CopyFiles(const Plan& plan, const std::vector<FolderFile>& files) {
  std::size_t done = 0;
  StartProgress("Copying", files.size());
  const bool copied = std::all_of(files.begin(), files.end(), [&](const FolderFile& file) {
    ShowProgress(++done);
    const fs::path name = file.path.lexically_relative(plan.order.newFolder);
    return Copy(file.path, plan.order.site / plan.order.to / name);
  });
  EndProgress();
  return copied;
}

/// The script comes last, and in one piece: it names files that have to be there.
bool WriteScript(const fs::path& path, const std::string& script) {
  fs::path unfinished = path;
  unfinished += ".new";
  if (!(std::ofstream(unfinished, std::ios::binary) << script << std::flush)) return false;
  std::error_code error;
  fs::rename(unfinished, path, error);
  return !error;
}

bool WriteSite(const Plan& plan) {
  const Order& order = plan.order;
  std::vector<FolderFile> files = plan.difference.added;
  files.insert(files.end(), plan.difference.changed.begin(), plan.difference.changed.end());
  if (order.coversOlder) files = Everything(plan.newFolder).changed;
  if (!CopyFiles(plan, files)) return false;
  if (!plan.newUpdater.empty() &&
      !Copy(plan.newUpdater, order.site / plan.updaterFolder / UpdaterName)) {
    return false;
  }
  return WriteScript(order.site / ScriptName, plan.script);
}

}  // namespace

Problems Make(const Order& order) {
  Problems problems;
  CheckOrder(order, problems);
  if (!problems.empty()) return problems;

  Plan plan;
  plan.order = order;
  plan.order.url = WithSlash(order.url);
  plan.order.wishes.url = plan.order.url + order.to + "/";
  plan.oldFolder = ListFolder(order.oldFolder, problems);
  plan.newFolder = ListFolder(order.newFolder, problems);
  plan.difference = Compare(plan.oldFolder, plan.newFolder);
  plan.script = ReadFile(order.site / ScriptName).value_or("");
  CheckDifference(plan.difference, problems);
  CheckCompanions(plan, problems);
  CheckFoldersAgainstFiles(plan.oldFolder, plan.newFolder, problems);
  CheckFoldersAgainstFiles(plan.newFolder, plan.oldFolder, problems);
  CheckEmptyFolders(plan, problems);
  CheckWishedNames(plan, problems);
  PlanHeader(plan, problems);
  if (!problems.empty()) return problems;

  PlanScript(plan);
  CheckScript(plan, problems);
  if (problems.empty() && !WriteSite(plan))
    problems.emplace_back("The upload folder cannot be written.");
  return problems;
}

}  // namespace publish
