#pragma once

// The rules for one argument: what it is to be, and what is written there.

#include <span>
#include <string>

#include "publish/check_line.h"

namespace publish {

using ArgumentRule = Remark (*)(const Line& line, const modPrincipal::Argument& argument,
                                const std::string& written);

/// For the arguments of a kind.
[[nodiscard]] std::span<const ArgumentRule> RulesFor(modPrincipal::ArgumentKind kind);

}  // namespace publish
