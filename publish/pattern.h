#pragma once

#include <string_view>

namespace publish {

/// Whether a name fits a pattern, whose "*" stands for any text and whose "?" for any character.
[[nodiscard]] bool Fits(std::string_view name, std::string_view pattern);

}  // namespace publish
