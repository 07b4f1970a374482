#pragma once

#include <string>
#include <string_view>

namespace platform::linux_layer {

/// A text of the program, code page Windows-1252, as the system takes it.
[[nodiscard]] std::string ToUtf8(std::string_view value);

/// A text of the system in the program's code page. "?" stands for a character that the code page
/// lacks; a byte that is not UTF-8 stays as it is.
[[nodiscard]] std::string FromUtf8(std::string_view value);

}  // namespace platform::linux_layer
