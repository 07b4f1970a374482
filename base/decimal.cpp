#include "base/decimal.h"

#include <algorithm>
#include <charconv>

namespace modFunciones {

std::optional<std::int32_t> DecimalToInt32(std::string_view digits) {
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  if (!std::all_of(digits.begin(), digits.end(), isDigit)) return std::nullopt;
  std::int32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc{}) return std::nullopt;  // empty, or too large
  return number;
}

}  // namespace modFunciones
