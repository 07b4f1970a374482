#pragma once

// What there may be to find in a script, and the two kinds of rules that find it.

#include <cstdint>
#include <string>
#include <vector>

#include "publish/reading.h"
#include "publish/script_text.h"

namespace publish {

enum class Severity { Error, Warning };

/// One thing to know about a script, in one sentence.
struct Finding {
  Severity severity = Severity::Error;
  int line = 0;  // 0: the script as a whole
  std::string text;
};
using Findings = std::vector<Finding>;

/// What each line tells by itself.
void CheckLines(const Script& script, Findings& findings);

/// What the lines of a script do together, unless its reading for every installed version that it
/// tells apart failed. newest: the newest release of the application, or "".
void CheckFlow(const Script& script, const std::vector<std::int32_t>& versions,
               const Reading& reading, const std::string& newest, Findings& findings);

}  // namespace publish
