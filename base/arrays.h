#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace modFunciones {

/// Number of elements of a list, 0 for one that was never filled.
template <typename Element>
[[nodiscard]] std::int32_t ElementCount(const std::vector<Element>& list) {
  return static_cast<std::int32_t>(list.size());
}

/// The elements from first to last, both included; last is lowered to the upper bound. Empty when
/// last lies before first.
[[nodiscard]] std::vector<std::string> ArraySlice(const std::vector<std::string>& list,
                                                  std::int32_t first = 0,
                                                  std::int32_t last = INT32_MAX);

/// The elements with the separator between each two.
[[nodiscard]] std::string Join(const std::vector<std::string>& list, const char* separator);

/// The pieces of a text between its separators, empty ones included; an empty text has no pieces.
[[nodiscard]] std::vector<std::string> Split(std::string_view value, char separator);

}  // namespace modFunciones
