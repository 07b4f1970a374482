#pragma once

// The words of the update script, each once. What reads scripts, what carries them out, what
// explains them and what makes them up at random all look here.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace modPrincipal {

/// A word that an argument may be, in any letter case, and the number that it stands for.
struct Word {
  std::string_view word;
  std::uint32_t value;
};

/// Nothing for a word that is not among them.
[[nodiscard]] std::optional<std::uint32_t> ValueOf(std::span<const Word> words,
                                                   std::string_view written);

enum class ArgumentKind {
  Text,
  Comparator,
  Version,
  Path,         // of a file
  Files,        // a path whose last component may hold "*" and "?"
  Url,          // of the file that the first argument names
  CommandLine,  // a program and its parameters
  ProcessName,  // what the file names of processes end with
  Milliseconds,
  Choice,  // one of the words
  Style,   // one of the words; the third argument of its action, wherever it stands in the line
};

struct Argument {
  std::string_view name;  // as explanations write it
  ArgumentKind kind;
  std::span<const Word> words = {};
};

/// One for each command, so that the compiler tells where a new one is missing.
enum class Verb {
  Name,
  Version,
  End,
  Add,
  Update,
  Delete,
  Message,
  Execute,
  Kill,
  Register,
  Unregister,
  Sleep
};

/// What a line that takes effect comes to.
enum class Effect {
  OnReading,  // it steers the reading, or tells the name
  Download,   // an action that is always recorded, since its file has to be fetched before
  Action,     // an action that is carried out at once with the marker "!", otherwise recorded
};

struct Command {
  Verb verb;
  Effect effect;
  std::string_view word;
  std::size_t leastFields;  // the word's own included; an action uses just these
  std::array<Argument, 3> list;

  [[nodiscard]] bool IsAction() const { return effect != Effect::OnReading; }
  [[nodiscard]] bool IsDownload() const { return effect == Effect::Download; }
  [[nodiscard]] bool MarkerWorks() const { return effect == Effect::Action; }
  [[nodiscard]] std::span<const Argument> Arguments() const;
};

[[nodiscard]] std::span<const Command> Commands();

/// Null for a word that is none; in any letter case.
[[nodiscard]] const Command* FindCommand(std::string_view word);

/// True for the word of a command whose file is downloaded.
[[nodiscard]] bool IsDownload(std::string_view word);

struct Comparator {
  std::string_view word;
  bool (*holds)(std::int32_t installed, std::int32_t given);  // numbers of versions
};

[[nodiscard]] std::span<const Comparator> Comparators();

/// Null for a word that is none.
[[nodiscard]] const Comparator* FindComparator(std::string_view word);

// What is replaced in the first argument of recorded actions, in this order.
inline constexpr std::string_view WindowsMacro = "$WinPath";
inline constexpr std::string_view SystemMacro = "$WinSysPath";
inline constexpr std::string_view OwnFolderMacro = "$AppPath";
inline constexpr std::array Macros = {WindowsMacro, SystemMacro, OwnFolderMacro};

}  // namespace modPrincipal
