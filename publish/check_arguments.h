#pragma once

// The rules for one argument: what it is to be, and what is written there.

#include <span>
#include <string>

#include "publish/check_line.h"

namespace publish {

using ArgumentRule = Remark (*)(const Line& line, const modPrincipal::Argument& argument,
                                const std::string& written);

/// In the order in which they speak.
[[nodiscard]] std::span<const ArgumentRule> ArgumentRules();

}  // namespace publish
