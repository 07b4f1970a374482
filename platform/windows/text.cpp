#include "platform/windows/text.h"

#include "platform/text.h"

namespace platform::windows {

namespace {

constexpr unsigned FirstMapped = 0x80;
constexpr unsigned FirstUnmapped = 0xA0;

}  // namespace

std::wstring ToUtf16(std::string_view value) {
  std::wstring wide;
  wide.reserve(value.size());
  for (const char character : value) {
    const auto byte = static_cast<unsigned char>(character);
    const bool mapped = byte >= FirstMapped && byte < FirstUnmapped;
    wide += static_cast<wchar_t>(mapped ? text::CodePointsFrom0x80[byte - FirstMapped] : byte);
  }
  return wide;
}

}  // namespace platform::windows
