#include "platform/windows/text.h"

#include "base/text.h"

namespace platform::windows_layer {

std::wstring ToUtf16(std::string_view value) {
  std::wstring wide;
  wide.reserve(value.size());
  for (const char character : value) wide += wchar_t{modFunciones::CodePointOf(character)};
  return wide;
}

const char* NullWhenEmpty(const std::string& value) {
  return value.empty() ? nullptr : value.c_str();
}

}  // namespace platform::windows_layer
