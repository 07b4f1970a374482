#include "transfer/url.h"

#include <algorithm>

#include "base/decimal.h"
#include "base/replace.h"
#include "base/text.h"

namespace modFunciones {
namespace {

constexpr std::string_view PlainScheme = "http://";
constexpr std::string_view SecureScheme = "https://";
constexpr const char* PlainPort = "80";
constexpr const char* SecurePort = "443";
constexpr const char* SecureMark = "https";

bool HasScheme(std::string_view url, std::string_view scheme) {
  return EqualIgnoringCase(url.substr(0, scheme.size()), scheme);
}

std::vector<std::string> SplitWithoutScheme(std::string_view rest, std::string_view defaultPort) {
  if (rest.empty()) return {};
  const auto slash = std::min(rest.find('/'), rest.size());
  const auto colon = rest.find(':');
  const bool namesPort = colon != std::string_view::npos;
  if (namesPort && colon > slash) return {};
  std::vector<std::string> parts;
  parts.reserve(4);
  parts.emplace_back(rest.substr(0, namesPort ? colon : slash));
  parts.emplace_back(namesPort ? rest.substr(colon + 1, slash - colon - 1) : defaultPort);
  parts.emplace_back(slash < rest.size() ? rest.substr(slash) : "/");
  return parts;
}

}  // namespace

std::vector<std::string> UrlParts;

bool IsPlainUrl(std::string_view url) { return HasScheme(url, PlainScheme); }

bool IsSecureUrl(std::string_view url) { return HasScheme(url, SecureScheme); }

std::vector<std::string> SplitUrl(std::string_view url) {
  if (IsSecureUrl(url)) {
    url.remove_prefix(SecureScheme.size());
    std::vector<std::string> parts = SplitWithoutScheme(url, SecurePort);
    if (!parts.empty()) parts.emplace_back(SecureMark);
    return parts;
  }
  if (IsPlainUrl(url)) url.remove_prefix(PlainScheme.size());
  return SplitWithoutScheme(ReplaceAll(url, PlainScheme, ""), PlainPort);
}

std::optional<std::int16_t> PortNumber(std::string_view portText) {
  const auto port = DecimalToInt32(portText);
  if (!port || *port > INT16_MAX) return std::nullopt;
  return static_cast<std::int16_t>(*port);
}

}  // namespace modFunciones
