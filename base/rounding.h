#pragma once

#include <cmath>
#include <cstdint>

namespace modFunciones {

/// The nearest whole number, halves to the even neighbour (the rounding mode that a program starts
/// with).
[[nodiscard]] inline std::int64_t RoundToEven(double value) { return std::llrint(value); }

}  // namespace modFunciones
