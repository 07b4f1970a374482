#pragma once

#include <string>
#include <vector>

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

/// What the author knows and the script does not tell.
struct Knowledge {
  std::string newest;   // the newest release of the application; may be empty
  std::string updater;  // the file of the updater that the header offers, its bytes; may be empty
};

/// Everything there is to know about a script, errors first, then by line.
[[nodiscard]] Findings Check(const Script& script, const Knowledge& knowledge);

/// The message with which the parser refuses the script, for one installed version at least; empty
/// when it refuses none.
[[nodiscard]] std::string Verdict(const Script& script);

}  // namespace publish
