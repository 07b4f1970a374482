#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modFunciones {

/// The pieces of the URL split last, as SplitUrl returns them. Written by each probe, and by
/// AddAction where it sends none.
extern std::vector<std::string> UrlParts;

/// True for a URL that begins with "http://", or with "https://", in any letter case.
[[nodiscard]] bool IsPlainUrl(std::string_view url);
[[nodiscard]] bool IsSecureUrl(std::string_view url);

/// Cuts a URL (its scheme in any letter case, "http://" when it is missing) into host, port text
/// ("80", or "443" with https, when it names none) and path, which begins with "/"; a fourth part,
/// "https", marks a secure one. Nothing is returned when no text is left without the scheme, or
/// when the first ":" stands behind the first "/".
[[nodiscard]] std::vector<std::string> SplitUrl(std::string_view url);

/// The port that a port text stands for; nothing when it is no number from 0 to 32,767.
[[nodiscard]] std::optional<std::int16_t> PortNumber(std::string_view portText);

}  // namespace modFunciones
