#include "publish/block.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "publish/urls.h"

namespace publish {
namespace {

using modFunciones::LowerCase;

std::string Installed(const std::string& name) { return "$AppPath\\" + name; }

bool IsProgram(const std::string& lowerName) { return lowerName.ends_with(".exe"); }

/// Whether a running program may hold the file.
bool IsModule(const FolderFile& file) {
  const std::string name = LowerCase(file.name);
  return IsProgram(name) || name.ends_with(".dll") || name.ends_with(".ocx");
}

/// What runs can be neither replaced nor deleted, and any program of the application may hold what
/// is. A program that is new may be there all the same.
void EndPrograms(const Difference& difference, const Wishes& wishes, Lines& block) {
  std::set<std::string> programs;
  const auto end = [&](const std::vector<FolderFile>& files) {
    for (const auto& file : files) {
      const std::string program = LowerCase(file.name.substr(file.name.find_last_of('\\') + 1));
      if (IsProgram(program)) programs.insert(program);
    }
  };
  const auto touchesModules = [](const std::vector<FolderFile>& files) {
    return std::any_of(files.begin(), files.end(), IsModule);
  };
  end(difference.added);
  end(difference.changed);
  end(difference.removed);
  if (touchesModules(difference.changed) || touchesModules(difference.removed)) {
    end(difference.present);
  }
  for (const auto& name : wishes.programs) programs.insert(LowerCase(name));
  for (const auto& program : programs) block.push_back("KILL|" + program);
}

/// The script has no condition for files, but the command interpreter of Windows has.
void PutWhereMissing(const std::string& name, const Wishes& wishes, Lines& block) {
  const std::string path = Installed(name);
  const std::string fresh = path + FreshSuffix;
  block.push_back("UPDATE|" + fresh + "|" + UrlBelow(wishes.url, name));
  block.push_back("EXECUTE|$WinSysPath\\cmd.exe /c if not exist \"" + path + "\" move \"" + fresh +
                  "\" \"" + path + "\"|WAIT|HIDE");
  block.push_back("DELETE|" + fresh);
}

void PutFiles(const std::vector<FolderFile>& files, bool mayBeThere, const Wishes& wishes,
              Lines& block) {
  for (const auto& file : files) {
    if (AreAmong(wishes.kept, file.name)) {
      PutWhereMissing(file.name, wishes, block);
      continue;
    }
    const bool replaces = mayBeThere && !AreAmong(wishes.backups, file.name);
    block.push_back((replaces ? "UPDATE|" : "ADD|") + Installed(file.name) + "|" +
                    UrlBelow(wishes.url, file.name));
  }
}

void RegisterComponents(const char* word, const std::vector<FolderFile>& files,
                        const Wishes& wishes, Lines& block) {
  for (const auto& file : files) {
    if (AreAmong(wishes.components, file.name)) block.push_back(word + Installed(file.name));
  }
}

}  // namespace

bool AreAmong(const Lines& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& wanted) {
    return modFunciones::EqualIgnoringCase(wanted, name);
  });
}

Lines BlockFor(const std::string& comparator, const std::string& version,
               const Difference& difference, const Wishes& wishes) {
  Lines block = {"VERSION|" + comparator + "|" + version};
  block.insert(block.end(), wishes.firstLines.begin(), wishes.firstLines.end());
  EndPrograms(difference, wishes, block);
  RegisterComponents("UNREGISTER|", difference.removed, wishes, block);
  PutFiles(difference.changed, true, wishes, block);
  PutFiles(difference.added, false, wishes, block);
  for (const auto& file : difference.removed) block.push_back("DELETE|" + Installed(file.name));
  RegisterComponents("REGISTER|", difference.changed, wishes, block);
  RegisterComponents("REGISTER|", difference.added, wishes, block);
  block.insert(block.end(), wishes.lastLines.begin(), wishes.lastLines.end());
  block.emplace_back("END");
  return block;
}

}  // namespace publish
