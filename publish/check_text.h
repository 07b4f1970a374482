#pragma once

// What concerns the script as a whole.

#include "publish/findings.h"
#include "publish/script_text.h"

namespace publish {

/// Byte-order mark and number of lines; when there are findings, looking further makes no sense.
[[nodiscard]] Findings CheckText(const Script& script);

/// The version of the header against the one that the updater's file tells of itself. updater: the
/// bytes of that file, or "".
void CheckHeaderVersion(const Script& script, const std::string& updater, Findings& findings);

}  // namespace publish
