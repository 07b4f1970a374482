#include "base/arrays.h"

#include <algorithm>

namespace modFunciones {

std::vector<std::string> ArraySlice(const std::vector<std::string>& list, std::int32_t first,
                                    std::int32_t last) {
  last = std::min(last, ElementCount(list) - 1);
  if (last < first) return {};
  return {list.begin() + first, list.begin() + last + 1};
}

std::string Join(const std::vector<std::string>& list, const char* separator) {
  std::string joined;
  for (const auto& element : list) {
    if (&element != &list.front()) joined += separator;
    joined += element;
  }
  return joined;
}

std::vector<std::string> Split(std::string_view value, char separator) {
  std::vector<std::string> pieces;
  if (value.empty()) return pieces;
  pieces.reserve(static_cast<std::size_t>(std::count(value.begin(), value.end(), separator)) + 1);
  while (true) {
    const auto end = value.find(separator);
    pieces.emplace_back(value.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    value.remove_prefix(end + 1);
  }
}

}  // namespace modFunciones
