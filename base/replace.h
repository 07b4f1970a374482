#pragma once

#include <string>
#include <string_view>

namespace modFunciones {

/// The text with every occurrence of wanted replaced, from left to right; what was put in is not
/// looked at again.
[[nodiscard]] std::string ReplaceAll(std::string_view text, std::string_view wanted,
                                     std::string_view replacement);

}  // namespace modFunciones
