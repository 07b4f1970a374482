#pragma once

// What the tool tells, as text for people or as JSON for build servers; both in UTF-8.

#include <string>
#include <vector>

#include "publish/check.h"
#include "publish/script_text.h"
#include "publish/simulate.h"

namespace publish {

/// scriptName: in UTF-8. verdict: the parser's message, or "" when it understands the script.
void ReportFindings(const std::string& scriptName, const std::string& verdict,
                    const Findings& findings, bool asJson);

/// probed: sizes are known.
void ReportOutcomes(const Script& script, const Offer& offer, const std::vector<Outcome>& outcomes,
                    bool probed, bool asJson);

/// The exit status for findings: 0 without any, 1 for warnings, 2 for errors.
[[nodiscard]] int StatusOf(const Findings& findings);

}  // namespace publish
