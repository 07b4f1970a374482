#pragma once

#include <cstdint>
#include <string_view>

namespace modPrincipal {

/// The version number of a text major.minor.revision, such that versions compare as their numbers
/// do: "1", the major part as written, then minor and revision padded to three digits. 0 when the
/// text is no version: a part is no decimal number or has more than three digits, or the major part
/// is missing. Parts after the third are ignored.
[[nodiscard]] std::int32_t VersionToNumber(std::string_view version);

}  // namespace modPrincipal
