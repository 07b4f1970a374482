#pragma once

#include "publish/findings.h"
#include "publish/script_text.h"

namespace publish {

/// What each line tells by itself.
[[nodiscard]] Findings CheckLines(const Script& script);

}  // namespace publish
