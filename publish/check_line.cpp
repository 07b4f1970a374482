#include "publish/check_line.h"

#include <algorithm>
#include <cstddef>

#include "base/text.h"

namespace publish {

bool HasSurplus(const Line& line) {
  if (line.command == nullptr || !line.command->IsAction()) return false;
  const auto taken = std::min(line.fields.size(), line.command->Arguments().size() + 1);
  return std::any_of(line.fields.begin() + static_cast<std::ptrdiff_t>(taken), line.fields.end(),
                     [](const std::string& field) { return !field.empty(); });
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string_view Trimmed(std::string_view text) {
  const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool BeginsWith(std::string_view text, std::string_view macro) {
  return modFunciones::EqualIgnoringCase(text.substr(0, macro.size()), macro);
}

}  // namespace publish
