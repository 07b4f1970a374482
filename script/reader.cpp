#include "script/reader.h"

#include <algorithm>
#include <array>

#include "base/arrays.h"
#include "base/text.h"
#include "script/version.h"

namespace modPrincipal {
namespace {

/// Without one marker.
std::string_view WordOf(const Fields& line) {
  return std::string_view(line[0]).substr(HasMarker(line) ? 1 : 0);
}

std::string NameOf(const Fields& line) {
  return modFunciones::Join(modFunciones::ArraySlice(line, 1), " ");
}

bool IsName(const Fields& line) {
  return std::any_of(line.begin() + 1, line.end(),
                     [](const std::string& word) { return !word.empty(); });
}

bool IsCondition(const Fields& line) {
  return line.size() == 3 && FindComparator(line[1]) != nullptr && VersionToNumber(line[2]) != 0;
}

ActionLine ActionOf(std::size_t index, const Command& command, const Fields& line) {
  static const std::string none;
  std::array<const std::string*, 3> arguments = {&none, &none, &none};
  std::size_t field = 0;
  for (const auto& argument : command.Arguments()) {
    const std::size_t place = argument.kind == ArgumentKind::Style ? 2 : field;
    arguments[place] = &line[++field];
  }
  const bool atOnce = command.MarkerWorks() && HasMarker(line);
  return {index, command, atOnce, *arguments[0], *arguments[1], *arguments[2]};
}

bool ReadHeader(const Fields& line, ScriptSink& sink) {
  if (line.size() == 2) sink.TakeHeader(VersionToNumber(line[0]), line[1]);
  return IsHeader(line);
}

}  // namespace

std::vector<Fields> CutScript(std::string_view script, std::vector<int>* numbers) {
  std::string text(script);
  std::erase(text, '\r');
  std::vector<Fields> significant;
  int number = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    ++number;
    if (line.empty() || line.starts_with('#')) continue;
    significant.push_back(modFunciones::Split(line, '|'));
    if (numbers != nullptr) numbers->push_back(number);
  }
  return significant;
}

bool HasMarker(const Fields& line) { return line[0].starts_with('!'); }

std::string CommandWord(const Fields& line) { return modFunciones::UpperCase(WordOf(line)); }

const Command* CommandOf(const Fields& line) { return FindCommand(WordOf(line)); }

bool IsHeader(const Fields& line) {
  return line.size() == 2 && VersionToNumber(line[0]) != 0 && !line[1].empty();
}

bool IsWellFormed(const Command& command, const Fields& line) {
  if (command.verb == Verb::Name) return IsName(line);
  if (command.verb == Verb::Version) return IsCondition(line);
  return line.size() >= command.leastFields;
}

Ending ReadScript(std::span<const Fields> lines, ScriptSink& sink) {
  using Kind = Ending::Kind;
  if (lines.size() < LeastLines || !ReadHeader(lines[0], sink)) return {Kind::NotUnderstood, 0};

  bool holds = false;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const Fields& line = lines[i];
    const Command* const command = CommandOf(line);
    if (command == nullptr) {
      holds = false;
    } else if (!IsWellFormed(*command, line)) {
      return {Kind::NotUnderstood, i};
    } else if (command->verb == Verb::Name) {
      sink.TakeName(NameOf(line));
    } else if (command->verb == Verb::Version) {
      holds = sink.Holds({i, *FindComparator(line[1]), VersionToNumber(line[2])});
    } else if (!holds) {
      continue;
    } else if (command->verb == Verb::End) {
      if (!sink.ReadsOn()) return {Kind::Whole, i};
      holds = false;
    } else if (!sink.TakeAction(ActionOf(i, *command, line))) {
      return {Kind::NotAvailable, i};
    }
  }
  return {Kind::Whole, lines.size() - 1};
}

}  // namespace modPrincipal
