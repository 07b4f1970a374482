#pragma once

#include <string_view>

namespace publish {

/// The command word that is nearest to a misspelt one; empty when none is near.
[[nodiscard]] std::string_view NearestCommand(std::string_view word);

}  // namespace publish
