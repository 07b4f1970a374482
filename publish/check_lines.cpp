#include <algorithm>
#include <span>

#include "base/text.h"
#include "publish/check_arguments.h"
#include "publish/check_line.h"
#include "publish/check_rules.h"
#include "publish/source.h"
#include "publish/words.h"
#include "script/version.h"

namespace publish {
namespace {

using modPrincipal::Argument;
using modPrincipal::Command;
using modPrincipal::FindCommand;
using modPrincipal::FindComparator;
using modPrincipal::HasMarker;
using modPrincipal::Macros;
using modPrincipal::Verb;
using Kind = modPrincipal::ArgumentKind;

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

std::string WhyUnknown(const Fields& fields) {
  const std::string word = modPrincipal::CommandWord(fields);
  const std::string trimmed(Trimmed(word));
  if (trimmed.empty() && fields.size() == 1) return "The line holds nothing but blanks";
  if (trimmed.starts_with('#')) return "The comment does not begin in the first column";
  if (FindCommand(trimmed) != nullptr) return "There are spaces around the command " + trimmed;
  std::vector<std::string> words;
  for (const auto& command : modPrincipal::Commands()) words.emplace_back(command.word);
  return Quoted(fields[0]) + " is no command" + NearestAmong(words, trimmed);
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

/// True for a byte that no character of the code page has.
bool IsUnassigned(char byte) {
  const char16_t codePoint = modFunciones::CodePointOf(byte);
  return codePoint >= 0x80 && codePoint < 0xA0;
}

Remark OddCharacters(const Line& line) {
  const auto isAccented = [](char character) {
    return static_cast<unsigned char>(character) > '~';
  };
  for (const auto& field : line.fields) {
    if (std::none_of(field.begin(), field.end(), isAccented)) continue;
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

Remark SurplusFields(const Line& line) {
  if (!HasSurplus(line)) return {};
  return {Severity::Warning, "The line is cut at each \"|\" into " +
                                 std::to_string(line.fields.size()) + " fields, but " +
                                 line.Word() + " takes " +
                                 std::to_string(line.command->Arguments().size() + 1) + ": " +
                                 FormOf(*line.command) + "."};
}

constexpr Remark (*LineRules[])(const Line& line) = {
    Refusal,          UnknownCommand, IdleMarker,   MacroInImmediateAction,
    MacroInWrongCase, OddCharacters,  SurplusFields};

constexpr Argument HeaderArguments[] = {{"version", Kind::Version}, {"URL", Kind::Url}};

}  // namespace

void CheckLines(const Script& script, Findings& findings) {
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    const Fields& fields = script.lines[i];
    const Line line = {fields, i == 0 ? nullptr : script.commands[i], i == 0};
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
      for (const auto& rule : RulesFor(argument.kind)) tell(rule(line, argument, fields[field]));
      ++field;
    }
  }
}

}  // namespace publish
