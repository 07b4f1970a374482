#pragma once

// The versions that a script names, and the one that a program tells of itself.

#include <string>
#include <string_view>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// No version comes after it.
inline constexpr const char* LatestVersion = "999.999.999";

/// One version for each case that the VERSION lines can tell apart, in rising order: those that
/// they name, those right below and above, and the outermost. First the empty text, which stands
/// for an installed version that is none.
[[nodiscard]] std::vector<std::string> VersionsToldApart(const Script& script);

/// The greatest version that a VERSION line names, as it is written; empty when there is none.
[[nodiscard]] std::string GreatestNamed(const Script& script);

/// The version, such as 1.0.3, that the version record of a Windows program tells; empty when there
/// is no record. program: the bytes of its file.
[[nodiscard]] std::string RecordedVersion(std::string_view program);

}  // namespace publish
