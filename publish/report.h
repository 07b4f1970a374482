#pragma once

// What the tool tells, as text for people or as JSON for build servers; both in UTF-8.

#include <string>
#include <vector>

#include "publish/check.h"
#include "publish/order.h"
#include "publish/script_text.h"
#include "publish/simulate.h"

namespace publish {

/// What check tells. scriptName: in UTF-8.
void ReportFindings(const std::string& scriptName, const Examination& examination, bool asJson);

/// Why nothing was done, each in a sentence in UTF-8; on standard error, unless as JSON.
void ReportProblems(const std::vector<std::string>& problems, bool asJson);

void ReportMade(const Order& order, const Made& made, const std::string& scriptName,
                const Examination& examination, bool asJson);

enum class Form { Text, Summary, Json };

/// probed: sizes are known.
void ReportOutcomes(const Script& script, const Offer& offer, const std::vector<Outcome>& outcomes,
                    bool probed, Form form);

/// The exit status where a command does nothing, and for errors.
inline constexpr int Failed = 2;

/// The exit status for findings: 0 without any, 1 for warnings, Failed for errors.
[[nodiscard]] int StatusOf(const Findings& findings);

}  // namespace publish
