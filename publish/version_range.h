#pragma once

// The installed versions that a script tells apart.

#include <cstdint>
#include <string>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// One version for each case that the VERSION lines can tell apart, in rising order: those that
/// they name, those right below and above, and the outermost. First the empty text, which stands
/// for an installed version that is none.
[[nodiscard]] std::vector<std::string> VersionsToldApart(const Script& script);

/// The greatest version that a VERSION line names, as it is written; empty when there is none.
[[nodiscard]] std::string GreatestNamed(const Script& script);

}  // namespace publish
