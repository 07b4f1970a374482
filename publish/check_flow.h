#pragma once

#include <string>

#include "publish/findings.h"
#include "publish/script_text.h"

namespace publish {

/// What the lines of a script do together, for every installed version that it tells apart. The
/// parser must not refuse it. newest: the newest release of the application, or "".
void CheckFlow(const Script& script, const std::string& newest, Findings& findings);

}  // namespace publish
