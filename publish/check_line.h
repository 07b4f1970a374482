#pragma once

// One line as the rules see it, what they say of it, and how they look at a text.

#include <string>
#include <string_view>

#include "publish/check_rules.h"
#include "script/commands.h"

namespace publish {

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

/// Whether more follows than the command takes.
[[nodiscard]] bool HasSurplus(const Line& line);

[[nodiscard]] std::string Quoted(std::string_view text);

/// The text without the blanks around it.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// Whether a text begins with a macro, in any letter case.
[[nodiscard]] bool BeginsWith(std::string_view text, std::string_view macro);

}  // namespace publish
