#include "script/version.h"

#include <string>

#include "base/arrays.h"
#include "base/decimal.h"

namespace modPrincipal {
namespace {

constexpr std::size_t PartCount = 3;
constexpr std::size_t DigitsPerPart = 3;

void PadWithZeros(std::string& part) {
  if (part.size() < DigitsPerPart) part.insert(0, DigitsPerPart - part.size(), '0');
}

}  // namespace

std::int32_t VersionToNumber(std::string_view version) {
  auto parts = modFunciones::Split(version, '.');
  parts.resize(PartCount);
  PadWithZeros(parts[1]);
  PadWithZeros(parts[2]);
  for (const auto& part : parts) {
    if (part.empty() || part.size() > DigitsPerPart) return 0;
  }
  return modFunciones::DecimalToInt32("1" + parts[0] + parts[1] + parts[2]).value_or(0);
}

}  // namespace modPrincipal
