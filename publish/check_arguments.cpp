#include "publish/check_arguments.h"

#include <algorithm>
#include <iterator>

#include "base/decimal.h"
#include "base/text.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "script/version.h"
#include "transfer/url.h"

namespace publish {

using modFunciones::LowerCase;
using modPrincipal::Argument;
using modPrincipal::Macros;
using Kind = modPrincipal::ArgumentKind;

namespace {

Remark UnknownWord(const Line& line, const Argument& argument, const std::string& written) {
  if (ValueOf(argument.words, written)) return {};
  if (argument.kind == Kind::Style && HasSurplus(line)) return {};  // SurplusFields tells
  const std::string said = Quoted(written) + " is no ";
  const std::string name(argument.name);
  if (argument.kind == Kind::Choice) {
    return {Severity::Error,
            said + LowerCase(name) + " word of " + line.Word() + ": the program is not started."};
  }
  const bool starts = line.command->Arguments()[0].kind == Kind::CommandLine;
  return {Severity::Warning, said + name + " of " + line.Word() + ": the " +
                                 (starts ? "program" : "message") + " gets none, or that of the " +
                                 line.Word() + " before it."};
}

Remark PauseThatIsNone(const Line& /*line*/, const Argument& /*argument*/,
                       const std::string& written) {
  if (modFunciones::DecimalToInt32(written)) return {};
  return {Severity::Warning,
          Quoted(written) + " is no number of milliseconds: the pause is left out."};
}

Remark OddVersion(const Line& /*line*/, const Argument& /*argument*/, const std::string& written) {
  const bool isVersion = modPrincipal::VersionToNumber(written) != 0;
  const std::string oddity = isVersion ? OddityOf(written) : "";
  if (oddity.empty()) return {};
  const bool isGreater = written.starts_with('0') && !written.starts_with("0.");
  return {isGreater ? Severity::Error : Severity::Warning, Quoted(written) + " " + oddity + "."};
}

/// Whether every % begins the code of a character.
bool HasCodesOnly(std::string_view url) {
  for (auto at = url.find('%'); at != std::string_view::npos; at = url.find('%', at + 1)) {
    const std::string_view code = url.substr(at + 1, 2);
    if (code.size() < 2 || code.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
      return false;
    }
  }
  return true;
}

/// What the server would understand otherwise than meant.
Remark OddUrl(std::string_view url) {
  if (url.find('\\') != std::string::npos) {
    return {Severity::Error, "The URL has a backslash, where servers want a \"/\"."};
  }
  if (url.find('#') != std::string::npos) {
    return {Severity::Error,
            "The URL has a \"#\", and what follows is not sent to the server: write %23."};
  }
  if (url.substr(0, url.find('?')).ends_with('/') ||
      url.find('/', url.find("//") + 2) == std::string::npos) {
    return {Severity::Error, "The URL is that of a folder, and no file can be had there."};
  }
  if (!HasCodesOnly(url)) {
    return {Severity::Warning, "The URL has a % without two hexadecimal digits: write %25."};
  }
  const auto isPlain = [](char character) { return character > ' ' && character <= '~'; };
  if (std::all_of(url.begin(), url.end(), isPlain)) return {};
  return {Severity::Warning,
          "The URL has blanks or accented letters, which have to be written as %20 and so on."};
}

Remark UnusableUrl(const Line& line, const Argument& /*argument*/, const std::string& url) {
  if (url.empty()) {
    if (line.isHeader) return {};  // Refusal tells
    return {Severity::Error, line.Word() + " names no URL, so that its download fails."};
  }
  if (Trimmed(url).size() != url.size()) {
    return {Severity::Error,
            "There are blanks around the URL, and they belong to it: take them away."};
  }
  const auto parts = modFunciones::SplitUrl(url);
  const bool isUsable = IsUrl(url) && !parts.empty() && !parts[0].empty() &&
                        modFunciones::PortNumber(parts[1]).value_or(0) != 0;
  if (isUsable) return OddUrl(url);
  return {Severity::Error, Quoted(url) +
                               " is no URL that the updater can use: http:// or https://, a "
                               "host, and a port from 1 to 32767 if any."};
}

Remark PlainHttp(const Line& /*line*/, const Argument& /*argument*/, const std::string& url) {
  if (!modFunciones::IsPlainUrl(url)) return {};
  const auto parts = modFunciones::SplitUrl(url);
  const std::string host = parts.empty() ? "" : LowerCase(parts[0]);
  if (host == "localhost" || host.starts_with("127.")) return {};
  return {Severity::Warning,
          "The URL is plain http, where anyone on the way can replace the file: use https."};
}

Remark MissingProgram(const Line& line, const Argument& /*argument*/, const std::string& written) {
  if (!written.empty()) return {};
  return {Severity::Error, line.Word() + " names no program."};
}

/// Character by character: that is how texts are searched fast.
bool HasAnyOf(std::string_view text, std::string_view characters) {
  return std::any_of(characters.begin(), characters.end(), [&](char character) {
    return text.find(character) != std::string_view::npos;
  });
}

/// What a path begins with that is no macro, or no whole one.
Remark BeginningOfPath(std::string_view path) {
  if (path.starts_with('$')) {
    for (const auto& macro : Macros) {
      if (!BeginsWith(path, macro)) continue;
      if (!path.starts_with(macro)) return {};  // MacroInWrongCase tells
      if (path.substr(macro.size()).starts_with('\\')) return {};
      return {Severity::Error, "There is no backslash behind " + std::string(macro) + "."};
    }
    return {Severity::Error,
            "The path begins with no macro; those are $WinPath, $WinSysPath and $AppPath."};
  }
  if (path.starts_with("\\\\") || path.substr(1, 2) == ":\\") return {};
  return {Severity::Warning,
          "The path begins with no macro and no drive, so that it depends on the folder in which "
          "the updater was started."};
}

Remark PathThatGoesAstray(const Line& line, const Argument& argument, const std::string& path) {
  if (path.empty()) return {Severity::Error, line.Word() + " names no file."};
  if (path.find('/') != std::string::npos) {
    if (!line.command->IsDownload()) {
      return {Severity::Warning, "The path has a \"/\", where Windows wants a backslash."};
    }
    return {
        Severity::Error,
        "The path has a \"/\": folders are made at backslashes only, and the download fails where "
        "one is missing."};
  }
  if (HasAnyOf(path, "<>\"") || path.find(':', 2) != std::string::npos) {
    return {Severity::Error, "The path has a character that no file of Windows may have."};
  }
  if (path.ends_with('\\')) {
    return {Severity::Error, "The path ends with a backslash, as that of a folder."};
  }
  if (HasAnyOf(path, "*?")) {
    return {argument.kind == Kind::Files ? Severity::Warning : Severity::Error,
            "The path has a * or ?, which only DELETE understands: it deletes every file that "
            "fits."};
  }
  return BeginningOfPath(path);
}

/// Names that are devices in every folder, whatever follows behind a dot.
constexpr std::string_view Devices[] = {
    "con",  "prn",  "aux",  "nul",  "com1", "com2", "com3", "com4", "com5", "com6", "com7",
    "com8", "com9", "lpt1", "lpt2", "lpt3", "lpt4", "lpt5", "lpt6", "lpt7", "lpt8", "lpt9"};
constexpr std::size_t LongestDevice = 4;

Remark PathToADevice(const Line& /*line*/, const Argument& /*argument*/, const std::string& path) {
  for (std::string_view rest = path; !rest.empty();) {
    const std::string_view name = rest.substr(0, rest.find('\\'));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    const std::string_view stem = Trimmed(name.substr(0, name.find('.')));
    if (stem.size() > LongestDevice) continue;
    const std::string device = LowerCase(stem);
    if (std::find(std::begin(Devices), std::end(Devices), device) == std::end(Devices)) continue;
    return {Severity::Error, Quoted(device) + " is a device of Windows, no file and no folder."};
  }
  return {};
}

/// Windows takes paths of so many characters; a download and a backup add to theirs.
constexpr std::size_t LongestPath = 259;
constexpr std::size_t LongestSuffix = 4;
/// A folder of programs, and the application's in it, may well have as many.
constexpr std::size_t LongAppPath = 80;

Remark PathThatIsLong(const Line& /*line*/, const Argument& /*argument*/, const std::string& path) {
  const bool hasMacro = path.starts_with('$');
  const std::size_t own = path.size() - (hasMacro ? std::min(path.find('\\'), path.size()) : 0);
  const std::size_t room = LongestPath - LongestSuffix;
  if (own >= room) {
    return {Severity::Error, "The path is too long: Windows takes " + std::to_string(LongestPath) +
                                 " characters, .tmp or .bak included."};
  }
  if (!hasMacro || own + LongAppPath <= room) return {};
  return {Severity::Warning,
          "The path is long: it fits only where the folder that it begins with has "
          "at most " +
              std::to_string(room - own) + " characters."};
}

/// Windows takes dots and blanks off the end of names.
Remark NameThatEndsWithADot(const Line& /*line*/, const Argument& /*argument*/,
                            const std::string& path) {
  const bool endsSo = path.ends_with('.') || path.find(".\\") != std::string::npos;
  if (!endsSo || path.find("..") != std::string::npos) return {};
  return {Severity::Warning, "A name of the path ends with a full stop, which Windows takes away."};
}

Remark DeletionOfTheUpdater(const Line& /*line*/, const Argument& argument,
                            const std::string& path) {
  if (argument.kind != Kind::Files || !DeletesUpdater(LowerCase(path))) return {};
  return {Severity::Error,
          "This deletes the updater too, which runs and cannot be deleted: the update ends with a "
          "failure."};
}

Remark BlanksAroundThePath(const Line& /*line*/, const Argument& /*argument*/,
                           const std::string& path) {
  if (Trimmed(path).size() == path.size()) return {};
  return {Severity::Warning, "There are blanks around the path, and they belong to it."};
}

/// Programs that Windows needs, or that every user has.
constexpr std::string_view CommonPrograms[] = {
    "explorer.exe", "svchost.exe", "winlogon.exe", "services.exe", "lsass.exe",   "csrss.exe",
    "dwm.exe",      "smss.exe",    "chrome.exe",   "firefox.exe",  "msedge.exe",  "outlook.exe",
    "excel.exe",    "winword.exe", "notepad.exe",  "taskmgr.exe",  "rundll32.exe"};
constexpr std::string_view ProgramSuffix = ".exe";
constexpr std::size_t ShortestStem = 3;

Remark KillOfOtherThanMeant(const Line& line, const Argument& /*argument*/,
                            const std::string& written) {
  if (written.empty()) return {Severity::Warning, line.Word() + " without a name ends nothing."};
  const std::string name = LowerCase(written);
  if (std::string_view("kestrane.exe").ends_with(name)) {
    return {Severity::Error, "KILL ends every program whose name ends so, other updaters too."};
  }
  for (const auto& program : CommonPrograms) {
    if (program.ends_with(name)) {
      return {program == name ? Severity::Warning : Severity::Error,
              "KILL ends every program whose name ends so, " + std::string(program) + " too."};
    }
  }
  const bool isFileName = Trimmed(name) == name && name.find('\\') == std::string::npos;
  if (!isFileName || !name.ends_with(ProgramSuffix)) {
    return {Severity::Warning,
            "KILL compares with the end of a file name such as ledger.exe: this ends nothing."};
  }
  if (name.size() - ProgramSuffix.size() < ShortestStem) {
    return {Severity::Warning,
            "KILL ends every program whose name ends so, and many may: the name is short."};
  }
  return {};
}

constexpr ArgumentRule OfVersions[] = {OddVersion};
constexpr ArgumentRule OfPaths[] = {PathThatGoesAstray,   PathToADevice,
                                    PathThatIsLong,       NameThatEndsWithADot,
                                    DeletionOfTheUpdater, BlanksAroundThePath};
constexpr ArgumentRule OfUrls[] = {UnusableUrl, PlainHttp};
constexpr ArgumentRule OfCommandLines[] = {MissingProgram};
constexpr ArgumentRule OfProcessNames[] = {KillOfOtherThanMeant};
constexpr ArgumentRule OfPauses[] = {PauseThatIsNone};
constexpr ArgumentRule OfWords[] = {UnknownWord};

}  // namespace

std::span<const ArgumentRule> RulesFor(Kind kind) {
  switch (kind) {
    case Kind::Text:
    case Kind::Comparator:
      return {};
    case Kind::Version:
      return OfVersions;
    case Kind::Path:
    case Kind::Files:
      return OfPaths;
    case Kind::Url:
      return OfUrls;
    case Kind::CommandLine:
      return OfCommandLines;
    case Kind::ProcessName:
      return OfProcessNames;
    case Kind::Milliseconds:
      return OfPauses;
    case Kind::Choice:
    case Kind::Style:
      return OfWords;
  }
  return {};
}

}  // namespace publish
