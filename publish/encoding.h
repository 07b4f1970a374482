#pragma once

// Between the program's code page, Windows-1252, and UTF-8, which terminals, build servers and file
// systems speak.

#include <optional>
#include <string>
#include <string_view>

namespace publish {

/// A text of the code page in UTF-8.
[[nodiscard]] std::string ToUtf8(std::string_view value);

/// A text in UTF-8 in the code page; nothing when it is no UTF-8 or has a character that the code
/// page lacks.
[[nodiscard]] std::optional<std::string> FromUtf8(std::string_view value);

/// An argument of the command line in the code page; one that is no UTF-8 is in it already.
[[nodiscard]] std::string FromArgument(const std::string& argument);

/// True for a byte that no character of the code page has.
[[nodiscard]] bool IsUnassigned(char byte);

}  // namespace publish
