#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace modFunciones {

/// The number that a text of decimal digits, and nothing else, stands for; nothing when it is no
/// number from 0 to 2,147,483,647.
[[nodiscard]] std::optional<std::int32_t> DecimalToInt32(std::string_view digits);

}  // namespace modFunciones
