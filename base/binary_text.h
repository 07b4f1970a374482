#pragma once

// Bytes written as text.

#include <optional>
#include <string>
#include <string_view>

namespace modFunciones {

/// Two digits a byte, letters in lower case.
[[nodiscard]] std::string HexText(std::string_view bytes);

/// Base64 in one line, with its padding (RFC 4648, section 4).
[[nodiscard]] std::string Base64Text(std::string_view bytes);

/// The bytes of such a text; nothing when it is none, by a blank or a missing padding for example.
[[nodiscard]] std::optional<std::string> FromBase64(std::string_view text);

}  // namespace modFunciones
