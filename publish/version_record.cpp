#include "publish/version_record.h"

#include <cstddef>

namespace publish {
namespace {

// VS_FIXEDFILEINFO of verrsrc.h: its signature, and where the parts of the version stand.
constexpr std::string_view Signature = "\xBD\x04\xEF\xFE";
constexpr std::size_t MinorAt = 8;
constexpr std::size_t MajorAt = 10;
constexpr std::size_t RevisionAt = 14;
constexpr std::size_t Size = 16;

std::string NumberAt(std::string_view record, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(record[i]); };
  return std::to_string(byte(at) + byte(at + 1) * 256);
}

}  // namespace

std::string RecordedVersion(std::string_view program) {
  const auto at = program.find(Signature);
  if (at == std::string_view::npos || program.size() - at < Size) return "";
  const auto record = program.substr(at);
  return NumberAt(record, MajorAt) + "." + NumberAt(record, MinorAt) + "." +
         NumberAt(record, RevisionAt);
}

}  // namespace publish
