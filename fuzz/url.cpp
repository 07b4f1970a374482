// A URL, and the text of a number.

#include "transfer/url.h"

#include <cmath>

#include "base/decimal.h"
#include "fuzz/fuzz.h"
#include "transfer/http_probe.h"

namespace {

using namespace modFunciones;

/// The number that digits stand for, worked out without a bound.
std::optional<std::int32_t> Number(const std::string& digits, double greatest) {
  double number = digits.empty() ? INFINITY : 0;
  for (const char digit : digits) {
    number = digit >= '0' && digit <= '9' ? number * 10 + (digit - '0') : INFINITY;
  }
  if (number > greatest) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

}  // namespace

void Fuzz(const std::string& firstLine, const std::string& rest) {
  Require(DecimalToInt32(rest) == Number(rest, INT32_MAX));
  Require(PortNumber(rest) == Number(rest, INT16_MAX));

  Require(AvailableLength(firstLine).value_or(200) == 200);
  if (UrlParts.empty()) return;
  Require(UrlParts.size() >= 3 && UrlParts[2].starts_with('/'));
  Require((UrlParts[0] + UrlParts[1]).find('/') == std::string::npos);

  // Without a scheme the parts are the text itself.
  if (firstLine.find("//") != std::string::npos) return;
  const bool namesPort = firstLine.find(':') < firstLine.find('/');
  const std::string whole = UrlParts[0] + (namesPort ? ":" + UrlParts[1] : "") + UrlParts[2];
  Require(whole == firstLine || whole == firstLine + '/');
  Require(namesPort || UrlParts[1] == "80");
}
