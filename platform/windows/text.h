#pragma once

#include <string>
#include <string_view>

namespace platform::windows {

/// Texts at the border to the W functions, always in code page 1252, whatever the system's own.
[[nodiscard]] std::wstring ToUtf16(std::string_view value);
/// A character that the code page lacks becomes "?".
[[nodiscard]] std::string FromUtf16(std::wstring_view value);

}  // namespace platform::windows
