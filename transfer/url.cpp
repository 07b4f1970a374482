#include "transfer/url.h"

#include "script/decimal.h"
#include "script/replace.h"

namespace modFunciones {
namespace {

constexpr const char* DefaultPort = "80";

}  // namespace

std::vector<std::string> UrlParts;

std::vector<std::string> SplitUrl(std::string_view url) {
  std::string rest = ReplaceAll(url, "http://", "");
  if (rest.empty()) return {};

  if (rest.find('/') == std::string::npos) rest += '/';
  const auto slash = rest.find('/');
  const auto colon = rest.find(':');
  if (colon == std::string::npos) return {rest.substr(0, slash), DefaultPort, rest.substr(slash)};
  if (colon > slash) return {};
  return {rest.substr(0, colon), rest.substr(colon + 1, slash - colon - 1), rest.substr(slash)};
}

std::optional<std::int16_t> PortNumber(std::string_view portText) {
  const auto port = DecimalToInt32(portText);
  if (!port || *port > INT16_MAX) return std::nullopt;
  return static_cast<std::int16_t>(*port);
}

}  // namespace modFunciones
