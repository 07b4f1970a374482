#include "base/replace.h"

namespace modFunciones {

std::string ReplaceAll(std::string_view text, std::string_view wanted,
                       std::string_view replacement) {
  std::string replaced;
  while (true) {
    const auto at = text.find(wanted);
    replaced += text.substr(0, at);
    if (at == std::string_view::npos) return replaced;
    replaced += replacement;
    text.remove_prefix(at + wanted.size());
  }
}

}  // namespace modFunciones
