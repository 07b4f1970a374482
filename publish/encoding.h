#pragma once

// Between the program's code page, Windows-1252, and UTF-8, which terminals, build servers and file
// systems speak.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace publish {

/// A text of the code page in UTF-8.
[[nodiscard]] std::string ToUtf8(std::string_view value);

/// A text in UTF-8 in the code page; nothing when it is no UTF-8 or has a character that the code
/// page lacks.
[[nodiscard]] std::optional<std::string> FromUtf8(std::string_view value);

/// A path in UTF-8 as the standard library takes it, and the other way round.
[[nodiscard]] std::filesystem::path PathOf(const std::string& utf8);
[[nodiscard]] std::string Utf8Of(const std::filesystem::path& path);

/// True for a text in UTF-8; one in ASCII is.
[[nodiscard]] bool IsUtf8(std::string_view value);

/// True for a byte that no character of the code page has.
[[nodiscard]] bool IsUnassigned(char byte);

}  // namespace publish
