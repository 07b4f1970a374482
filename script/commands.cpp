#include "script/commands.h"

#include <algorithm>

#include "base/text.h"

namespace modPrincipal {
namespace {

// Icons of MessageBox: MB_ICONWARNING, MB_ICONINFORMATION, MB_ICONSTOP, none.
constexpr Word Icons[] = {
    {"EXCLAMATION", 48}, {"INFORMATION", 64}, {"CRITICAL", 16}, {"NOTHING", 0}};

// SW_ values of ShowWindow.
constexpr Word Windows[] = {{"HIDE", 0}, {"NORMAL", 4},   {"NORMALFOCUS", 1},
                            {"MIN", 6},  {"MINFOCUS", 2}, {"MAX", 3}};

// Whether to wait for the end of the program.
constexpr Word Waits[] = {{"WAIT", 1}, {"NOWAIT", 0}};

using Kind = ArgumentKind;

constexpr Argument NameWord = {"word", Kind::Text};
constexpr Argument MoreWords = {"...", Kind::Text};
constexpr Argument Relation = {"comparator", Kind::Comparator};
constexpr Argument Version = {"version", Kind::Version};
constexpr Argument File = {"file", Kind::Path};
constexpr Argument DeletedFiles = {"file", Kind::Files};
constexpr Argument Url = {"URL", Kind::Url};
constexpr Argument Text = {"text", Kind::Text};
constexpr Argument Icon = {"icon", Kind::Style, Icons};
constexpr Argument CommandLine = {"command", Kind::CommandLine};
constexpr Argument WaitWord = {"WAIT", Kind::Choice, Waits};
constexpr Argument Window = {"window", Kind::Style, Windows};
constexpr Argument ProcessName = {"name", Kind::ProcessName};
constexpr Argument Duration = {"milliseconds", Kind::Milliseconds};

constexpr Command Table[] = {
    {Verb::Name, Effect::OnReading, "NAME", 2, {NameWord, MoreWords}},
    {Verb::Version, Effect::OnReading, "VERSION", 3, {Relation, Version}},
    {Verb::End, Effect::OnReading, "END", 1, {}},
    {Verb::Add, Effect::Download, "ADD", 3, {File, Url}},
    {Verb::Update, Effect::Download, "UPDATE", 3, {File, Url}},
    {Verb::Delete, Effect::Action, "DELETE", 2, {DeletedFiles}},
    {Verb::Message, Effect::Action, "MSG", 3, {Text, Icon}},
    {Verb::Execute, Effect::Action, "EXECUTE", 4, {CommandLine, WaitWord, Window}},
    {Verb::Kill, Effect::Action, "KILL", 2, {ProcessName}},
    {Verb::Register, Effect::Action, "REGISTER", 2, {File}},
    {Verb::Unregister, Effect::Action, "UNREGISTER", 2, {File}},
    {Verb::Sleep, Effect::Action, "SLEEP", 2, {Duration}},
};

using Number = std::int32_t;
constexpr Comparator ComparatorTable[] = {
    {">", [](Number installed, Number given) { return installed > given; }},
    {"<", [](Number installed, Number given) { return installed < given; }},
    {">=", [](Number installed, Number given) { return installed >= given; }},
    {"<=", [](Number installed, Number given) { return installed <= given; }},
    {"=", [](Number installed, Number given) { return installed == given; }},
};

/// The row of a table that a word stands in, in any letter case, or null.
template <typename Row>
const Row* Find(std::span<const Row> table, std::string_view word) {
  const auto found = std::find_if(table.begin(), table.end(), [&](const Row& row) {
    return modFunciones::EqualIgnoringCase(row.word, word);
  });
  return found == table.end() ? nullptr : &*found;
}

}  // namespace

std::optional<std::uint32_t> ValueOf(std::span<const Word> words, std::string_view written) {
  const Word* const word = Find(words, written);
  return word == nullptr ? std::nullopt : std::optional(word->value);
}

std::span<const Argument> Command::Arguments() const {
  const auto end = std::find_if(list.begin(), list.end(),
                                [](const Argument& argument) { return argument.name.empty(); });
  return {list.begin(), end};
}

std::span<const Command> Commands() { return Table; }

const Command* FindCommand(std::string_view word) { return Find(Commands(), word); }

bool IsDownload(std::string_view word) {
  const Command* const command = FindCommand(word);
  return command != nullptr && command->IsDownload();
}

std::span<const Comparator> Comparators() { return ComparatorTable; }

const Comparator* FindComparator(std::string_view word) { return Find(Comparators(), word); }

}  // namespace modPrincipal
