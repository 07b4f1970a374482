#include "publish/pattern.h"

#include <cstddef>

namespace publish {

bool Fits(std::string_view name, std::string_view pattern) {
  constexpr auto None = std::string_view::npos;
  std::size_t at = 0;
  std::size_t in = 0;
  std::size_t star = None;   // the last one
  std::size_t starEnds = 0;  // in the name
  while (at < name.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = in++;
      starEnds = at;
    } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == name[at])) {
      ++in;
      ++at;
    } else if (star != None) {
      in = star + 1;
      at = ++starEnds;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == None;
}

}  // namespace publish
