#include "publish/make.h"

#include <algorithm>

#include "base/text.h"
#include "publish/check.h"
#include "publish/history.h"
#include "publish/plan.h"
#include "publish/progress.h"
#include "publish/script_text.h"
#include "publish/signing.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "publish/words.h"
#include "script/version.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
using modPrincipal::VersionToNumber;
std::string WithSlash(const std::string& url) { return url.ends_with('/') ? url : url + "/"; }

/// The version of the updater in the new folder; empty when there is none.
std::string VersionOfUpdater(const Order& order, Problems& problems) {
  const auto program = ReadFile(order.newFolder / UpdaterName);
  if (!program) return "";
  std::string version = RecordedVersion(*program);
  if (version.empty()) {
    problems.emplace_back(
        "Kestrane.exe in the new folder is no updater for Windows: put the one from build/windows "
        "there.");
  }
  return version;
}

/// What the header says: what the publisher said, otherwise the updater in the new folder when it
/// is newer than what the script offers.
void PlanHeader(Plan& plan, Made& made) {
  const Order& order = plan.order;
  const std::string version = VersionOfUpdater(order, made.problems);
  if (!order.updaterUrl.empty()) {
    SetHeader(plan.script, order.updaterVersion + "|" + order.updaterUrl);
  } else if (!version.empty()) {
    const Script history = CutWithNumbers(plan.script);
    const std::string offered = history.lines.empty() ? "" : FieldAt(history.lines[0], 0);
    if (VersionToNumber(version) > VersionToNumber(offered)) {
      const std::string target = "kestrane/" + version + "/" + UpdaterName;
      plan.uploads.push_back({order.newFolder / UpdaterName, target});
      SetHeader(plan.script, version + "|" + order.url + target);
    }
  }
  const Script script = CutWithNumbers(plan.script);
  if (script.lines.empty()) {
    made.problems.emplace_back(
        "The script needs the updater's version and URL: put Kestrane.exe into the new folder, or "
        "name them with --updater.");
    return;
  }
  const std::string& offered = FieldAt(script.lines[0], 0);
  if (!version.empty() && VersionToNumber(version) < VersionToNumber(offered)) {
    made.notes.push_back("The script offers the updater " + offered +
                         ", but Kestrane.exe in the new folder is " + version +
                         ": if that is the file at the URL of the script, every installation "
                         "replaces it again and again.");
  }
}

Difference Everything(const Plan& plan) {
  Difference difference;
  for (const auto& [key, file] : plan.newFolder) difference.changed.push_back(file);
  for (const auto& [key, file] : plan.oldFolder) difference.present.push_back(file);
  return difference;
}

void PlanUploads(Plan& plan) {
  const Difference difference = plan.order.coversOlder ? Everything(plan) : plan.difference;
  for (const auto* files : {&difference.added, &difference.changed}) {
    for (const auto& [name, path] : *files) {
      const fs::path below = path.lexically_relative(plan.order.newFolder);
      plan.uploads.push_back({path, plan.order.to / below});
    }
  }
}

void PlanScript(Plan& plan, Made& made) {
  const Order& order = plan.order;
  if (!order.name.empty()) SetName(plan.script, order.name);
  made.block = BlockFor("=", order.from, plan.difference, order.wishes);
  PutBlock(plan.script, made.block, order.from);
  if (!order.coversOlder) return;
  // Nobody knows what those have, so all of it is kept.
  Wishes wishes = order.wishes;
  for (const auto& [key, file] : plan.newFolder) wishes.backups.push_back(file.name);
  const Lines older = BlockFor("<", order.to, Everything(plan), wishes);
  made.block.insert(made.block.end(), older.begin(), older.end());
  const auto replaced = PutOlderBlock(plan.script, older);
  for (const auto& version : replaced) {
    made.notes.push_back("The block for all versions below " + version +
                         " is gone: the one for all below " + order.to + " stands in its place.");
  }
  made.notes.push_back("An application that passes no valid version gets the block for all below " +
                       order.to + ", at every start.");
}

void CheckScript(const Plan& plan, Problems& problems) {
  const Examination examination = Check(CutWithNumbers(plan.script), {plan.order.to, ""});
  for (const auto& [severity, line, text] : examination.findings) {
    if (severity == Severity::Warning) continue;
    problems.push_back("The script would not do, in its line " + std::to_string(line) + ": " +
                       modFunciones::ToUtf8(text));
  }
}

/// What may be meant otherwise.
void TellOddities(const Plan& plan, std::vector<std::string>& notes) {
  const Order& order = plan.order;
  for (const auto& pattern : plan.idlePatterns) {
    notes.push_back("--exclude " + modFunciones::ToUtf8(pattern) + " leaves nothing out.");
  }
  if (!fs::exists(order.site / ScriptName)) {
    notes.push_back("There was no script in " + Utf8Of(order.site) +
                    ", so this is a new one: if there are earlier releases, name their upload "
                    "folder with --site.");
  }
  const auto irreplaceable = Irreplaceable(plan);
  if (!irreplaceable.empty()) {
    notes.push_back("Hidden or read-only in the old folder: " + Some(irreplaceable) +
                    ". Where an installation has them so, they stay, and the update may fail. "
                    "Wine hides what begins with a dot.");
  }
  const auto unnamed = Unnamed(plan);
  if (!unnamed.empty()) {
    notes.push_back("No line of the script names " + Some(unnamed) +
                    " any more: what nobody fetches can go.");
  }
}

bool Copy(const fs::path& file, const fs::path& target) {
  std::error_code error;
  fs::create_directories(target.parent_path(), error);
  fs::remove(target, error);  // copying over it fails with some libraries
  return fs::copy_file(file, target, error);
}

bool CopyFiles(const Plan& plan) {
  std::size_t done = 0;
  StartProgress("Copying", plan.uploads.size());
  const bool copied =
      std::all_of(plan.uploads.begin(), plan.uploads.end(), [&](const Upload& upload) {
        ShowProgress(++done);
        return upload.isPublished || Copy(upload.file, plan.order.site / upload.target);
      });
  EndProgress();
  return copied;
}

/// The script comes last: it names files that have to be there.
bool WriteSite(const Plan& plan) {
  return CopyFiles(plan) && WriteFile(plan.order.site / ScriptName, plan.script);
}

void CountFiles(const Difference& difference, Made& made) {
  made.changed = difference.changed.size();
  made.added = difference.added.size();
  made.removed = difference.removed.size();
  for (const auto* files : {&difference.added, &difference.changed}) {
    for (const auto& [name, path] : *files) {
      const auto size = fs::file_size(path);
      made.bytes += size;
      if (size < made.largestBytes) continue;
      made.largestBytes = size;
      made.largest = modFunciones::ToUtf8(name);
    }
  }
}

Plan PlanFor(const Order& order, Made& made) {
  Plan plan;
  plan.order = order;
  plan.order.url = WithSlash(order.url);
  plan.order.wishes.url = plan.order.url + order.to + "/";
  plan.idlePatterns = {order.excluded.begin(), order.excluded.end()};
  plan.oldFolder = ListFolder(order.oldFolder, order.excluded, plan.idlePatterns, made.problems);
  plan.newFolder = ListFolder(order.newFolder, order.excluded, plan.idlePatterns, made.problems);
  plan.difference = Compare(plan.oldFolder, plan.newFolder);
  std::erase_if(plan.difference.removed,
                [&](const FolderFile& file) { return AreAmong(order.wishes.kept, file.name); });
  plan.script = WithoutSignatures(ReadFile(order.site / ScriptName).value_or(""));
  return plan;
}

}  // namespace

Made Make(const Order& order) {
  Made made;
  CheckOrder(order, made.problems);
  if (!made.problems.empty()) return made;

  Plan plan = PlanFor(order, made);
  CheckFolders(plan, made.problems);
  PlanHeader(plan, made);
  if (!made.problems.empty()) return made;

  PlanUploads(plan);
  PlanScript(plan, made);
  CheckScript(plan, made.problems);
  CheckUploads(plan, made.problems);
  if (!made.problems.empty()) return made;

  TellOddities(plan, made.notes);
  CountFiles(plan.difference, made);
  made.script = plan.script;
  if (!order.isTrial && !WriteSite(plan)) {
    made.problems.emplace_back("The upload folder cannot be written.");
  }
  return made;
}

}  // namespace publish
