#include "publish/folder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>

#include "base/text.h"
#include "publish/pattern.h"
#include "publish/progress.h"
#include "publish/source.h"
#include "script/commands.h"

namespace publish {
namespace {

namespace fs = std::filesystem;

// At the root of the folder; the header of the script brings the updater up to date.
constexpr std::string_view UpdaterNames[] = {"kestrane.exe", "kestranetmp.exe"};

/// Whether an accent stands apart from its letter, as some systems write names: U+0300 to U+036F.
bool HasAccentsApart(const std::string& utf8Name) {
  const auto at = utf8Name.find_first_of("\xCC\xCD");
  return at != std::string::npos && (utf8Name[at] == '\xCC' || utf8Name[at + 1] < '\xB0');
}

/// Why a script cannot name a file; empty when it can.
std::string WhyUnusable(const std::string& utf8Name) {
  if (HasAccentsApart(utf8Name)) {
    return "has an accent that is a character of its own: write the accented letter as one";
  }
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

/// The patterns that leave a name out.
std::vector<std::string> Excluding(const std::string& utf8Name,
                                   const std::vector<std::string>& patterns) {
  const std::string name =
      modFunciones::LowerCase(modFunciones::FromUtf8(utf8Name).value_or(utf8Name));
  const std::string last = name.substr(name.find_last_of('/') + 1);
  std::vector<std::string> excluding;
  for (const auto& given : patterns) {
    std::string pattern = modFunciones::LowerCase(given);
    std::replace(pattern.begin(), pattern.end(), '\\', '/');
    const bool isWhole = pattern.find('/') != std::string::npos;
    if (Fits(isWhole ? name : last, pattern)) excluding.push_back(given);
  }
  return excluding;
}

/// What is there and no file of the folder that could be read; empty for a file and a folder.
std::string WhyNoFile(const fs::directory_entry& entry, const fs::path& folder) {
  std::error_code error;
  if (entry.is_symlink(error) && !entry.exists(error)) {
    return "is a link to nothing: take it away, or put the file there";
  }
  if (entry.is_symlink(error) && entry.is_directory(error)) {
    return "is a link to a folder, which is not followed: put the folder there";
  }
  if (entry.is_symlink(error) && !IsWithin(entry.path(), folder)) {
    return "is a link that leads out of the folder: put the file itself there";
  }
  const bool isFile = entry.is_directory(error) || entry.is_regular_file(error);
  return isFile ? "" : "is neither a file nor a folder";
}

}  // namespace

Folder ListFolder(const fs::path& folder, const std::vector<std::string>& excluded,
                  std::set<std::string>& idle, std::vector<std::string>& problems) {
  Folder files;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = Utf8Of(entry->path().lexically_relative(folder));
    const auto excluding = Excluding(name, excluded);
    for (const auto& pattern : excluding) idle.erase(pattern);
    if (!excluding.empty()) {
      entry.disable_recursion_pending();
      continue;
    }
    std::string why = WhyUnusable(name);
    if (why.empty()) why = WhyNoFile(*entry, folder);
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

bool IsWithin(const fs::path& path, const fs::path& folder) {
  std::error_code error;
  const fs::path way =
      fs::weakly_canonical(path, error).lexically_relative(fs::weakly_canonical(folder, error));
  return !way.empty() && *way.begin() != "..";
}

bool HaveSameContent(const fs::path& a, const fs::path& b) {
  std::error_code error;
  const auto size = fs::file_size(a, error);
  if (error || size != fs::file_size(b, error)) return false;
  std::ifstream one(a, std::ios::binary);
  std::ifstream two(b, std::ios::binary);
  // In blocks: it may be more than there is memory for.
  std::array<char, 131'072> block;
  std::array<char, 131'072> other;
  for (std::uintmax_t left = size; left > 0;) {
    const auto length = static_cast<std::size_t>(std::min<std::uintmax_t>(left, block.size()));
    if (!one.read(block.data(), static_cast<std::streamsize>(length))) return false;
    if (!two.read(other.data(), static_cast<std::streamsize>(length))) return false;
    if (std::memcmp(block.data(), other.data(), length) != 0) return false;
    left -= length;
  }
  return one && two;  // an empty file may be one that cannot be opened
}

Difference Compare(const Folder& oldFolder, const Folder& newFolder) {
  Difference difference;
  std::size_t compared = 0;
  StartProgress("Comparing files", newFolder.size());
  for (const auto& [key, file] : newFolder) {
    ShowProgress(++compared);
    const auto old = oldFolder.find(key);
    if (old == oldFolder.end()) {
      difference.added.push_back(file);
    } else if (file.name != old->second.name || !HaveSameContent(file.path, old->second.path)) {
      difference.changed.push_back(file);
    } else {
      difference.present.push_back(file);
    }
  }
  EndProgress();
  for (const auto& [key, file] : oldFolder) {
    if (!newFolder.contains(key)) difference.removed.push_back(file);
  }
  return difference;
}

}  // namespace publish
