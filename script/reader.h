#pragma once

// Reads an update script: plain text whose significant lines are cut into fields at "|".
//
//   1.4.2|http://updates.invalid/updater/Updater.exe      version and URL of the current updater
//   #A comment                                            dropped, as are blank lines
//   NAME|Sample|Ledger                                    the application's display name
//   VERSION|<|3.0.0                                       the lines below hold for versions before
//   !KILL|ledger.exe                                      carried out while the script is read
//   UPDATE|$AppPath\ledger.exe|http://updates.invalid/ledger/3.0.0/ledger.exe
//   MSG|Ledger has been brought up to date.|INFORMATION
//   END                                                   reading ends where the block applied
//
// The reader keeps and does nothing. It tells a sink, line by line, what takes effect.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "script/commands.h"

namespace modPrincipal {

using Fields = std::vector<std::string>;

/// A script of fewer significant lines is not understood.
inline constexpr std::size_t LeastLines = 4;

/// Cuts the text of a script into its significant lines and their fields. numbers: gets the number
/// of each in the text, from 1 on.
[[nodiscard]] std::vector<Fields> CutScript(std::string_view script,
                                            std::vector<int>* numbers = nullptr);

[[nodiscard]] bool HasMarker(const Fields& line);

/// The command word of a line, in capitals, without one marker.
[[nodiscard]] std::string CommandWord(const Fields& line);

/// The command of that word; null for a word that is none.
[[nodiscard]] const Command* CommandOf(const Fields& line);

/// False for a header, and for a line of a command, for whose sake a script is refused.
[[nodiscard]] bool IsHeader(const Fields& line);
[[nodiscard]] bool IsWellFormed(const Command& command, const Fields& line);

/// What a VERSION line asks of an installed version.
struct Condition {
  std::size_t line;  // index
  const Comparator& comparator;
  std::int32_t version;

  [[nodiscard]] bool HoldsFor(std::int32_t installed) const {
    return comparator.holds(installed, version);
  }
};

/// An action line that takes effect. Its arguments are as an action has them, and as written.
struct ActionLine {
  std::size_t line;  // index
  const Command& command;
  bool atOnce;
  const std::string& arg1;
  const std::string& arg2;
  const std::string& arg3;
};

class ScriptSink {
 public:
  ScriptSink() = default;
  virtual ~ScriptSink() = default;
  ScriptSink(const ScriptSink&) = delete;
  ScriptSink& operator=(const ScriptSink&) = delete;

  /// A header of two fields. version: its number, 0 when it is none, for which the script is
  /// refused, as for an empty URL.
  virtual void TakeHeader(std::int32_t version, const std::string& url) = 0;

  virtual void TakeName(const std::string& name) = 0;

  /// Whether the lines below take effect.
  virtual bool Holds(const Condition& condition) = 0;

  /// False ends the reading: the file of a download is not available.
  virtual bool TakeAction(const ActionLine& action) = 0;

  /// END where the condition holds. True: somebody reads on for whom it does not.
  virtual bool ReadsOn() { return false; }
};

/// How a reading ended, and the index of the last line that was looked at.
struct Ending {
  enum class Kind { Whole, NotUnderstood, NotAvailable };
  Kind kind;
  std::size_t line;
};

[[nodiscard]] Ending ReadScript(std::span<const Fields> lines, ScriptSink& sink);

}  // namespace modPrincipal
