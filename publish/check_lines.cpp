#include "publish/check_rules.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "base/decimal.h"
#include "base/replace.h"
#include "base/text.h"
#include "publish/reading.h"
#include "publish/source.h"
#include "publish/vocabulary.h"
#include "script/version.h"
#include "transfer/url.h"

namespace publish {
namespace {

using modFunciones::LowerCase;
using modFunciones::UpperCase;

/// A line with what the rules ask of it.
struct Line {
  const Fields& fields;
  std::string word;
  const Command* command;  // null: unknown
  bool isHeader;
};

/// What a rule says of a line; an empty text when it has nothing to say.
struct Remark {
  Severity severity = Severity::Error;
  std::string text;
};

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

std::string Trimmed(const std::string& text) {
  constexpr const char* Blanks = " \t";
  const auto first = text.find_first_not_of(Blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string WhyHeaderIsRefused(const Fields& fields) {
  if (fields.size() != 2) {
    return "The header must have exactly two fields, the updater's version and its URL, but has " +
           std::to_string(fields.size());
  }
  if (modPrincipal::VersionToNumber(fields[0]) == 0) {
    return "The header's " + Quoted(fields[0]) + " is no version such as 1.0.3";
  }
  return "The header names no URL";
}

std::string WhyVersionIsRefused(const Fields& fields) {
  if (fields.size() != 3) {
    return "VERSION must have exactly three fields, VERSION|comparator|version, but has " +
           std::to_string(fields.size());
  }
  if (IsComparator(fields[1])) return Quoted(fields[2]) + " is no version such as 3.2.0";
  if (IsComparator(Trimmed(fields[1]))) return "There are spaces around the comparator";
  return Quoted(fields[1]) + " is no comparator; those are <, <=, =, >= and >";
}

std::string WhyRefused(const Line& line) {
  if (line.isHeader) return WhyHeaderIsRefused(line.fields);
  if (line.word == "VERSION") return WhyVersionIsRefused(line.fields);
  if (line.fields.size() < line.command->leastFields) {
    return line.word + " needs " + std::to_string(line.command->leastFields) + " fields, " +
           std::string(line.command->form) + ", but has " + std::to_string(line.fields.size());
  }
  return "NAME gives no name";
}

Remark Refusal(const Line& line) {
  if (!line.isHeader && line.command == nullptr) return {};
  if (!IsRefused(line.fields, line.isHeader)) return {};
  return {Severity::Error,
          WhyRefused(line) + ": an installation that reads this line refuses the whole script."};
}

std::string WhyUnknown(const Line& line) {
  const std::string& written = line.fields[0];
  const std::string trimmed = Trimmed(line.word);
  if (trimmed.empty() && line.fields.size() == 1) return "The line holds nothing but blanks";
  if (trimmed.starts_with('#')) return "The comment does not begin in the first column";
  if (FindCommand(trimmed) != nullptr) return "There are spaces around the command " + trimmed;
  const auto nearest = NearestCommand(trimmed);
  return Quoted(written) + " is no command" +
         (nearest.empty() ? "" : " (" + std::string(nearest) + " is the nearest)");
}

Remark UnknownCommand(const Line& line) {
  if (line.isHeader || line.command != nullptr) return {};
  return {Severity::Error, WhyUnknown(line) +
                               ", which switches off the actions that follow, up to the next "
                               "VERSION."};
}

Remark IdleMarker(const Line& line) {
  if (line.command == nullptr || line.command->markerWorks || !HasMarker(line.fields)) return {};
  return {Severity::Warning, "The \"!\" has no effect on " + line.word + "."};
}

Remark MacroInImmediateAction(const Line& line) {
  if (line.command == nullptr || !line.command->markerWorks || !HasMarker(line.fields)) return {};
  for (const auto& macro : Macros) {
    if (FieldAt(line.fields, 1).find(macro) != std::string::npos) {
      return {Severity::Error, std::string(macro) + " is not replaced in an action with \"!\"."};
    }
  }
  return {};
}

Remark MacroInWrongCase(const Line& line) {
  if (line.command == nullptr || !line.command->isAction) return {};
  std::string rest = FieldAt(line.fields, 1);
  for (const auto& macro : Macros) rest = modFunciones::ReplaceAll(rest, macro, "");
  for (const auto& macro : Macros) {
    if (LowerCase(rest).find(LowerCase(macro)) != std::string::npos) {
      return {Severity::Error,
              std::string(macro) + " is written in other letter case and is not replaced."};
    }
  }
  return {};
}

Remark UnknownWord(const Line& line) {
  for (const auto& argument : WordArguments()) {
    if (line.word != argument.command || line.fields.size() <= argument.field) continue;
    const std::string& written = line.fields[argument.field];
    const auto& words = argument.words;
    if (std::find(words.begin(), words.end(), UpperCase(written)) != words.end()) continue;
    return {argument.stopsTheAction ? Severity::Error : Severity::Warning,
            Quoted(written) + " is no " + std::string(argument.meaning) + " of " + line.word +
                ": " + std::string(argument.consequence) + "."};
  }
  return {};
}

Remark PauseThatIsNone(const Line& line) {
  if (line.word != "SLEEP" || line.fields.size() < 2) return {};
  if (modFunciones::DecimalToInt32(line.fields[1])) return {};
  return {Severity::Warning,
          Quoted(line.fields[1]) + " is no number of milliseconds: the pause is left out."};
}

/// The URL that a line names; empty when it names none.
std::string UrlOf(const Line& line) {
  if (line.isHeader) return FieldAt(line.fields, 1);
  return line.word == "ADD" || line.word == "UPDATE" ? FieldAt(line.fields, 2) : "";
}

Remark UnusableUrl(const Line& line) {
  const bool needsUrl = line.word == "ADD" || line.word == "UPDATE";
  const std::string url = UrlOf(line);
  if (needsUrl && line.fields.size() > 2 && url.empty()) {
    return {Severity::Error, line.word + " names no URL, so that its download fails."};
  }
  if (url.empty()) return {};
  const auto parts = modFunciones::SplitUrl(url);
  const bool isUsable =
      IsUrl(url) && !parts.empty() && !parts[0].empty() && modFunciones::PortNumber(parts[1]);
  if (!isUsable) {
    return {Severity::Error, Quoted(url) +
                                 " is no URL that the updater can use: http:// or https://, a "
                                 "host, and a port of at most 32767 if any."};
  }
  const auto isPlain = [](char character) { return character > ' ' && character <= '~'; };
  if (std::all_of(url.begin(), url.end(), isPlain)) return {};
  return {Severity::Warning,
          "The URL has blanks or accented letters, which have to be written as %20 and so on."};
}

Remark PlainHttp(const Line& line) {
  const std::string url = UrlOf(line);
  if (!IsUrl(url) || modFunciones::IsSecureUrl(url)) return {};
  const auto parts = modFunciones::SplitUrl(url);
  const std::string host = parts.empty() ? "" : LowerCase(parts[0]);
  if (host == "localhost" || host.starts_with("127.")) return {};
  return {Severity::Warning,
          "The URL is plain http, where anyone on the way can replace the file: use https."};
}

Remark MissingArgument(const Line& line) {
  if (line.command == nullptr || line.fields.size() < 2 || !line.fields[1].empty()) return {};
  switch (line.command->first) {
    case Argument::Path:
      return {Severity::Error, line.word + " names no file."};
    case Argument::CommandLine:
      return {Severity::Error, "EXECUTE names no program."};
    case Argument::ProcessName:
      return {Severity::Warning, "KILL without a name ends nothing."};
    case Argument::Other:
      return {};
  }
  return {};
}

/// What a path begins with that is no macro, or no whole one.
Remark BeginningOfPath(const std::string& path) {
  for (const auto& macro : Macros) {
    if (!LowerCase(path).starts_with(LowerCase(macro))) continue;
    if (!path.starts_with(macro)) return {};  // MacroInWrongCase tells
    if (path.substr(macro.size()).starts_with('\\')) return {};
    return {Severity::Error, "There is no backslash behind " + std::string(macro) + "."};
  }
  if (path.starts_with('$')) {
    return {Severity::Error,
            "The path begins with no macro; those are $WinPath, $WinSysPath and $AppPath."};
  }
  if (path.starts_with("\\\\") || path.substr(1, 2) == ":\\") return {};
  return {Severity::Warning,
          "The path begins with no macro and no drive, so that it depends on the folder in which "
          "the updater was started."};
}

Remark PathThatGoesAstray(const Line& line) {
  if (line.command == nullptr || line.command->first != Argument::Path) return {};
  const std::string path = FieldAt(line.fields, 1);
  if (path.empty()) return {};
  if (path.find('/') != std::string::npos) {
    return {Severity::Warning, "The path has a \"/\", where Windows wants a backslash."};
  }
  if (path.ends_with('\\')) {
    return {Severity::Error, "The path ends with a backslash, as that of a folder."};
  }
  if (path.find_first_of("*?") != std::string::npos) {
    return {line.word == "DELETE" ? Severity::Warning : Severity::Error,
            "The path has a * or ?, which only DELETE understands: it deletes every file that "
            "fits."};
  }
  return BeginningOfPath(path);
}

/// Names that are devices in every folder, whatever follows behind a dot.
constexpr std::string_view Devices[] = {
    "con",  "prn",  "aux",  "nul",  "com1", "com2", "com3", "com4", "com5", "com6", "com7",
    "com8", "com9", "lpt1", "lpt2", "lpt3", "lpt4", "lpt5", "lpt6", "lpt7", "lpt8", "lpt9"};

Remark PathToADevice(const Line& line) {
  if (line.command == nullptr || line.command->first != Argument::Path) return {};
  std::istringstream path(LowerCase(FieldAt(line.fields, 1)));
  for (std::string name; std::getline(path, name, '\\');) {
    const std::string stem = Trimmed(name.substr(0, name.find('.')));
    if (std::find(std::begin(Devices), std::end(Devices), stem) == std::end(Devices)) continue;
    return {Severity::Error, Quoted(stem) + " is a device of Windows, no file and no folder."};
  }
  return {};
}

Remark BlanksAroundThePath(const Line& line) {
  const bool hasPath = line.command != nullptr && line.command->first == Argument::Path;
  const std::string path = hasPath ? FieldAt(line.fields, 1) : "";
  if (Trimmed(path) == path) return {};
  return {Severity::Warning, "There are blanks around the path, and they belong to it."};
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
    if (IsUtf8(field) && std::any_of(field.begin(), field.end(), IsAccented)) {
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

/// Programs that Windows needs, or that every user has.
constexpr std::string_view CommonPrograms[] = {
    "explorer.exe", "svchost.exe", "winlogon.exe", "services.exe", "lsass.exe",   "csrss.exe",
    "dwm.exe",      "smss.exe",    "chrome.exe",   "firefox.exe",  "msedge.exe",  "outlook.exe",
    "excel.exe",    "winword.exe", "notepad.exe",  "taskmgr.exe",  "rundll32.exe"};
constexpr std::string_view ProgramSuffix = ".exe";
constexpr std::size_t ShortestStem = 3;

Remark KillOfTooMuch(const Line& line) {
  if (line.word != "KILL" || line.fields.size() < 2) return {};
  const std::string name = LowerCase(line.fields[1]);
  if (name.empty()) return {};
  if (std::string_view("kestrane.exe").ends_with(name)) {
    return {Severity::Error, "KILL ends every program whose name ends so, the updater too."};
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

constexpr Remark (*Rules[])(const Line& line) = {Refusal,
                                                 UnknownCommand,
                                                 IdleMarker,
                                                 MacroInImmediateAction,
                                                 MacroInWrongCase,
                                                 UnknownWord,
                                                 PauseThatIsNone,
                                                 UnusableUrl,
                                                 PlainHttp,
                                                 MissingArgument,
                                                 PathThatGoesAstray,
                                                 PathToADevice,
                                                 BlanksAroundThePath,
                                                 OddCharacters,
                                                 KillOfTooMuch};

}  // namespace

void CheckLines(const Script& script, Findings& findings) {
  for (const auto& [number, fields] : script.lines) {
    const bool isHeader = &fields == &script.lines.front().fields;
    const std::string word = isHeader ? "" : CommandWord(fields);
    const Line line = {fields, word, FindCommand(word), isHeader};
    for (const auto& rule : Rules) {
      const Remark remark = rule(line);
      if (!remark.text.empty()) findings.push_back({remark.severity, number, remark.text});
    }
  }
}

}  // namespace publish
