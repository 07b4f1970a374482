#pragma once

#include <string>
#include <string_view>

namespace platform::windows_layer {

/// A text as the W functions take it, always from code page 1252, whatever the system's own.
[[nodiscard]] std::wstring ToUtf16(std::string_view value);

}  // namespace platform::windows_layer
