#include "publish/check_rules.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <span>

#include "base/decimal.h"
#include "base/text.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "script/version.h"
#include "transfer/url.h"

namespace publish {
namespace {

using modFunciones::LowerCase;
using modPrincipal::Argument;
using modPrincipal::Command;
using modPrincipal::FindCommand;
using modPrincipal::FindComparator;
using modPrincipal::HasMarker;
using modPrincipal::Macros;
using modPrincipal::Verb;
using Kind = modPrincipal::ArgumentKind;

/// A line with what the rules ask of it.
struct Line {
  const Fields& fields;
  const modPrincipal::Command* command;  // null: unknown, or the header
  bool isHeader;

  [[nodiscard]] std::string Word() const { return std::string(command->word); }
};

/// What a rule says of a line; an empty text when it has nothing to say.
struct Remark {
  Severity severity = Severity::Error;
  std::string text;
};

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string_view Trimmed(std::string_view text) {
  constexpr const char* Blanks = " \t";
  const auto first = text.find_first_not_of(Blanks);
  if (first == std::string_view::npos) return "";
  return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

constexpr const char* NoVersion =
    " is no version of up to three numbers, of at most three digits each, such as 3.2.0";

std::string WhyHeaderIsRefused(const Fields& fields) {
  if (fields.size() != 2) {
    return "The header must have exactly two fields, the updater's version and its URL, but has " +
           std::to_string(fields.size());
  }
  if (modPrincipal::VersionToNumber(fields[0]) == 0) {
    return "The header's " + Quoted(fields[0]) + NoVersion;
  }
  return "The header names no URL";
}

std::string WhyVersionIsRefused(const Fields& fields) {
  if (fields.size() != 3) {
    return "VERSION must have exactly three fields, VERSION|comparator|version, but has " +
           std::to_string(fields.size());
  }
  if (FindComparator(fields[1]) != nullptr) {
    return Quoted(fields[2]) + NoVersion;
  }
  if (FindComparator(Trimmed(fields[1])) != nullptr) {
    return "There are spaces around the comparator";
  }
  return Quoted(fields[1]) + " is no comparator; those are <, <=, =, >= and >";
}

/// How a line of the command is written.
std::string FormOf(const Command& command) {
  std::string form(command.word);
  for (const auto& argument : command.Arguments()) form += "|" + std::string(argument.name);
  return form;
}

std::string WhyRefused(const Line& line) {
  if (line.isHeader) return WhyHeaderIsRefused(line.fields);
  const Command& command = *line.command;
  if (command.verb == Verb::Version) return WhyVersionIsRefused(line.fields);
  if (line.fields.size() < command.leastFields) {
    return line.Word() + " needs " + std::to_string(command.leastFields) + " fields, " +
           FormOf(command) + ", but has " + std::to_string(line.fields.size());
  }
  return "NAME gives no name";
}

Remark Refusal(const Line& line) {
  const bool isRefused = line.isHeader
                             ? !modPrincipal::IsHeader(line.fields)
                             : line.command != nullptr && !IsWellFormed(*line.command, line.fields);
  if (!isRefused) return {};
  return {Severity::Error,
          WhyRefused(line) + ": an installation that reads this line refuses the whole script."};
}

/// The number of letters to put in, take out or replace.
std::size_t Distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[to.size()];
}

/// The command word that is nearest to a misspelt one; empty when none is near.
std::string_view NearestCommand(std::string_view word) {
  std::string_view nearest;
  std::size_t least = word.size() / 2 + 1;
  for (const auto& command : modPrincipal::Commands()) {
    const std::size_t distance = Distance(word, command.word);
    if (distance < least) {
      least = distance;
      nearest = command.word;
    }
  }
  return nearest;
}

std::string WhyUnknown(const Fields& fields) {
  const std::string word = modPrincipal::CommandWord(fields);
  const std::string trimmed(Trimmed(word));
  if (trimmed.empty() && fields.size() == 1) return "The line holds nothing but blanks";
  if (trimmed.starts_with('#')) return "The comment does not begin in the first column";
  if (FindCommand(trimmed) != nullptr) return "There are spaces around the command " + trimmed;
  const auto nearest = NearestCommand(trimmed);
  return Quoted(fields[0]) + " is no command" +
         (nearest.empty() ? "" : " (" + std::string(nearest) + " is the nearest)");
}

Remark UnknownCommand(const Line& line) {
  if (line.isHeader || line.command != nullptr) return {};
  return {Severity::Error, WhyUnknown(line.fields) +
                               ", which switches off the actions that follow, up to the next "
                               "VERSION."};
}

Remark IdleMarker(const Line& line) {
  if (line.command == nullptr || line.command->MarkerWorks() || !HasMarker(line.fields)) return {};
  return {Severity::Warning, "The \"!\" has no effect on " + line.Word() + "."};
}

Remark MacroInImmediateAction(const Line& line) {
  if (line.command == nullptr || !line.command->MarkerWorks() || !HasMarker(line.fields)) return {};
  for (const auto& macro : Macros) {
    if (FieldAt(line.fields, 1).find(macro) != std::string::npos) {
      return {Severity::Error, std::string(macro) + " is not replaced in an action with \"!\"."};
    }
  }
  return {};
}

/// Whether a text begins with a macro, in any letter case.
bool BeginsWith(std::string_view text, std::string_view macro) {
  return LowerCase(text.substr(0, macro.size())) == LowerCase(macro);
}

Remark MacroInWrongCase(const Line& line) {
  if (line.command == nullptr || !line.command->IsAction()) return {};
  const std::string_view text = FieldAt(line.fields, 1);
  for (auto at = text.find('$'); at != std::string_view::npos; at = text.find('$', at + 1)) {
    const std::string_view rest = text.substr(at);
    for (const auto& macro : Macros) {
      if (rest.starts_with(macro) || !BeginsWith(rest, macro)) continue;
      return {Severity::Error,
              std::string(macro) + " is written in other letter case and is not replaced."};
    }
  }
  return {};
}

bool IsAccented(char character) { return static_cast<unsigned char>(character) > '~'; }

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!modFunciones::TakeCodePoint(text)) return false;
  }
  return true;
}

/// True for a byte that no character of the code page has.
bool IsUnassigned(char byte) {
  const char16_t codePoint = modFunciones::CodePointOf(byte);
  return codePoint >= 0x80 && codePoint < 0xA0;
}

Remark OddCharacters(const Line& line) {
  for (const auto& field : line.fields) {
    if (std::none_of(field.begin(), field.end(), IsAccented)) continue;
    if (IsUtf8(field)) {
      return {Severity::Warning,
              "The line is in UTF-8, but is read as Windows-1252: users will "
              "see other characters."};
    }
    if (std::any_of(field.begin(), field.end(), IsUnassigned)) {
      return {Severity::Warning, "The line has bytes that are no character of Windows-1252."};
    }
  }
  return {};
}

/// Whether more follows than the command takes.
bool HasSurplus(const Line& line) {
  if (line.command == nullptr || !line.command->IsAction()) return false;
  const auto taken = std::min(line.fields.size(), line.command->Arguments().size() + 1);
  return std::any_of(line.fields.begin() + static_cast<std::ptrdiff_t>(taken), line.fields.end(),
                     [](const std::string& field) { return !field.empty(); });
}

Remark SurplusFields(const Line& line) {
  if (!HasSurplus(line)) return {};
  return {Severity::Warning, "The line is cut at each \"|\" into " +
                                 std::to_string(line.fields.size()) + " fields, but " +
                                 line.Word() + " takes " +
                                 std::to_string(line.command->Arguments().size() + 1) + ": " +
                                 FormOf(*line.command) + "."};
}

// The rules for one argument: what it is to be, and what is written there.

bool IsPath(Kind kind) { return kind == Kind::Path || kind == Kind::Files; }

Remark UnknownWord(const Line& line, const Argument& argument, const std::string& written) {
  if (argument.words.empty() || ValueOf(argument.words, written)) return {};
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

Remark PauseThatIsNone(const Line& /*line*/, const Argument& argument, const std::string& written) {
  if (argument.kind != Kind::Milliseconds || modFunciones::DecimalToInt32(written)) return {};
  return {Severity::Warning,
          Quoted(written) + " is no number of milliseconds: the pause is left out."};
}

Remark OddVersion(const Line& /*line*/, const Argument& argument, const std::string& written) {
  const bool isVersion =
      argument.kind == Kind::Version && modPrincipal::VersionToNumber(written) != 0;
  const std::string oddity = isVersion ? OddityOf(written) : "";
  if (oddity.empty()) return {};
  const bool isGreater = written.starts_with('0') && !written.starts_with("0.");
  return {isGreater ? Severity::Error : Severity::Warning, Quoted(written) + " " + oddity + "."};
}

/// Whether every % begins the code of a character.
bool HasCodesOnly(const std::string& url) {
  for (auto at = url.find('%'); at != std::string::npos; at = url.find('%', at + 1)) {
    const std::string code = url.substr(at + 1, 2);
    if (code.size() < 2 || code.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
      return false;
    }
  }
  return true;
}

/// What the server would understand otherwise than meant.
Remark OddUrl(const std::string& url) {
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

Remark UnusableUrl(const Line& line, const Argument& argument, const std::string& url) {
  if (argument.kind != Kind::Url) return {};
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

Remark PlainHttp(const Line& /*line*/, const Argument& argument, const std::string& url) {
  if (argument.kind != Kind::Url || !IsUrl(url) || modFunciones::IsSecureUrl(url)) return {};
  const auto parts = modFunciones::SplitUrl(url);
  const std::string host = parts.empty() ? "" : LowerCase(parts[0]);
  if (host == "localhost" || host.starts_with("127.")) return {};
  return {Severity::Warning,
          "The URL is plain http, where anyone on the way can replace the file: use https."};
}

Remark MissingArgument(const Line& line, const Argument& argument, const std::string& written) {
  if (!written.empty()) return {};
  if (IsPath(argument.kind)) return {Severity::Error, line.Word() + " names no file."};
  if (argument.kind == Kind::CommandLine) {
    return {Severity::Error, line.Word() + " names no program."};
  }
  if (argument.kind == Kind::ProcessName) {
    return {Severity::Warning, line.Word() + " without a name ends nothing."};
  }
  return {};
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
  if (!IsPath(argument.kind) || path.empty()) return {};
  if (path.find('/') != std::string::npos) {
    if (line.command->effect != modPrincipal::Effect::Download) {
      return {Severity::Warning, "The path has a \"/\", where Windows wants a backslash."};
    }
    return {
        Severity::Error,
        "The path has a \"/\": folders are made at backslashes only, and the download fails where "
        "one is missing."};
  }
  if (path.find_first_of("<>\"") != std::string::npos || path.find(':', 2) != std::string::npos) {
    return {Severity::Error, "The path has a character that no file of Windows may have."};
  }
  if (path.ends_with('\\')) {
    return {Severity::Error, "The path ends with a backslash, as that of a folder."};
  }
  if (path.find_first_of("*?") != std::string::npos) {
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

Remark PathToADevice(const Line& /*line*/, const Argument& argument, const std::string& path) {
  if (!IsPath(argument.kind)) return {};
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

Remark PathThatIsLong(const Line& /*line*/, const Argument& argument, const std::string& path) {
  if (!IsPath(argument.kind)) return {};
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
Remark NameThatEndsWithADot(const Line& /*line*/, const Argument& argument,
                            const std::string& path) {
  const bool endsSo = path.ends_with('.') || path.find(".\\") != std::string::npos;
  if (!IsPath(argument.kind) || !endsSo || path.find("..") != std::string::npos) return {};
  return {Severity::Warning, "A name of the path ends with a full stop, which Windows takes away."};
}

Remark DeletionOfTheUpdater(const Line& /*line*/, const Argument& argument,
                            const std::string& path) {
  if (argument.kind != Kind::Files || !DeletesUpdater(LowerCase(path))) return {};
  return {Severity::Error,
          "This deletes the updater too, which runs and cannot be deleted: the update ends with a "
          "failure."};
}

Remark BlanksAroundThePath(const Line& /*line*/, const Argument& argument,
                           const std::string& path) {
  if (!IsPath(argument.kind) || Trimmed(path).size() == path.size()) return {};
  return {Severity::Warning, "There are blanks around the path, and they belong to it."};
}

/// Programs that Windows needs, or that every user has.
constexpr std::string_view CommonPrograms[] = {
    "explorer.exe", "svchost.exe", "winlogon.exe", "services.exe", "lsass.exe",   "csrss.exe",
    "dwm.exe",      "smss.exe",    "chrome.exe",   "firefox.exe",  "msedge.exe",  "outlook.exe",
    "excel.exe",    "winword.exe", "notepad.exe",  "taskmgr.exe",  "rundll32.exe"};
constexpr std::string_view ProgramSuffix = ".exe";
constexpr std::size_t ShortestStem = 3;

Remark KillOfTooMuch(const Line& /*line*/, const Argument& argument, const std::string& written) {
  if (argument.kind != Kind::ProcessName) return {};
  const std::string name = LowerCase(written);
  if (name.empty()) return {};
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

constexpr Remark (*LineRules[])(const Line& line) = {
    Refusal,          UnknownCommand, IdleMarker,   MacroInImmediateAction,
    MacroInWrongCase, OddCharacters,  SurplusFields};

constexpr Remark (*ArgumentRules[])(const Line& line, const Argument& argument,
                                    const std::string& written) = {
    UnknownWord,          PauseThatIsNone,     OddVersion,    UnusableUrl,    PlainHttp,
    MissingArgument,      PathThatGoesAstray,  PathToADevice, PathThatIsLong, NameThatEndsWithADot,
    DeletionOfTheUpdater, BlanksAroundThePath, KillOfTooMuch};

constexpr Argument HeaderArguments[] = {{"version", Kind::Version}, {"URL", Kind::Url}};

}  // namespace

void CheckLines(const Script& script, Findings& findings) {
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    const Fields& fields = script.lines[i];
    const Line line = {fields, i == 0 ? nullptr : CommandOf(fields), i == 0};
    const auto tell = [&](const Remark& remark) {
      if (!remark.text.empty()) {
        findings.push_back({remark.severity, script.numbers[i], remark.text});
      }
    };
    for (const auto& rule : LineRules) tell(rule(line));
    std::span<const Argument> arguments;
    if (line.isHeader) arguments = HeaderArguments;
    if (line.command != nullptr) arguments = line.command->Arguments();
    std::size_t field = line.isHeader ? 0 : 1;
    for (const auto& argument : arguments) {
      if (field == fields.size()) break;
      for (const auto& rule : ArgumentRules) tell(rule(line, argument, fields[field]));
      ++field;
    }
  }
}

}  // namespace publish
