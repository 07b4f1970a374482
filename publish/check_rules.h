#pragma once

// The two kinds of rules that Check goes by.

#include <string>

#include "publish/check.h"

namespace publish {

/// What each line tells by itself.
void CheckLines(const Script& script, Findings& findings);

/// What the lines of a script do together, for every installed version that it tells apart. The
/// parser must not refuse it. newest: the newest release of the application, or "".
void CheckFlow(const Script& script, const std::string& newest, Findings& findings);

}  // namespace publish
