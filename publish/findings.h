#pragma once

#include <string>
#include <vector>

namespace publish {

enum class Severity { Error, Warning };

/// One thing to know about a script, in one sentence.
struct Finding {
  Severity severity = Severity::Error;
  int line = 0;  // 0: the script as a whole
  std::string text;
};
using Findings = std::vector<Finding>;

}  // namespace publish
