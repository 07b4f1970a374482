#pragma once

#include <string>
#include <string_view>

namespace platform::windows_layer {

/// A text as the W functions take it, always from code page 1252, whatever the system's own.
[[nodiscard]] std::wstring ToUtf16(std::string_view value);

/// As calls take a text that is optional. Valid as long as the text is.
[[nodiscard]] const char* NullWhenEmpty(const std::string& value);

}  // namespace platform::windows_layer
