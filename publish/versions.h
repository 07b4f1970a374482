#pragma once

// The versions that a script names, and the one that a program tells of itself.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// No version comes after it.
inline constexpr const char* LatestVersion = "999.999.999";

/// The number of one version for each case that the VERSION lines can tell apart, in rising order:
/// those that they name, those right below and above, and the outermost. First 0, which stands for
/// an installed version that is none.
[[nodiscard]] std::vector<std::int32_t> VersionsToldApart(const Script& script);

/// What is odd about the text of a version, to follow it in a sentence; empty when nothing is.
[[nodiscard]] std::string OddityOf(const std::string& version);

/// Tells in problems, in a sentence, what is odd about a version.
void CheckVersion(const std::string& version, std::vector<std::string>& problems);

/// The version that has a number; empty when none has.
[[nodiscard]] std::string VersionOf(std::int32_t number);

/// The greatest version that a VERSION line names, as it is written; empty when there is none.
[[nodiscard]] std::string GreatestNamed(const Script& script);

/// The version, such as 1.0.3, that the version record of a Windows program tells; empty when there
/// is no record. program: the bytes of its file.
[[nodiscard]] std::string RecordedVersion(std::string_view program);

}  // namespace publish
