#include "publish/block.h"

#include <algorithm>
#include <set>

#include "base/text.h"

namespace publish {
namespace {

using modFunciones::LowerCase;

std::string Installed(const std::string& name) { return "$AppPath\\" + name; }

bool AreAmong(const Lines& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& wanted) {
    return LowerCase(wanted) == LowerCase(name);
  });
}

/// A program that runs can be neither replaced nor deleted. One that is new may be there all the
/// same.
void EndPrograms(const Difference& difference, Lines& block) {
  std::set<std::string> programs;
  for (const auto* files : {&difference.added, &difference.changed, &difference.removed}) {
    for (const auto& file : *files) {
      const std::string program = LowerCase(file.name.substr(file.name.find_last_of('\\') + 1));
      if (program.ends_with(".exe")) programs.insert(program);
    }
  }
  for (const auto& program : programs) block.push_back("KILL|" + program);
}

void PutFiles(const std::vector<FolderFile>& files, bool mayBeThere, const Wishes& wishes,
              Lines& block) {
  for (const auto& file : files) {
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

Lines BlockFor(const std::string& comparator, const std::string& version,
               const Difference& difference, const Wishes& wishes) {
  Lines block = {"VERSION|" + comparator + "|" + version};
  EndPrograms(difference, block);
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

std::string UrlBelow(const std::string& url, const std::string& name) {
  constexpr std::string_view Plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr const char* Digits = "0123456789ABCDEF";
  std::string below = url;
  for (const char character : modFunciones::ToUtf8(name)) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\\') {
      below += '/';
    } else if (Plain.find(character) != std::string_view::npos) {
      below += character;
    } else {
      below += {'%', Digits[byte / 16], Digits[byte % 16]};
    }
  }
  return below;
}

}  // namespace publish
