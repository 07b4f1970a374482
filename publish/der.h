#pragma once

// How files hold keys: elements of DER, and DER as text (PEM, RFC 7468).

#include <optional>
#include <string>
#include <string_view>

namespace publish {

enum class Tag : unsigned char {
  Integer = 0x02,
  BitString = 0x03,
  OctetString = 0x04,
  Null = 0x05,
  ObjectIdentifier = 0x06,
  Sequence = 0x30
};

[[nodiscard]] std::string Element(Tag tag, std::string_view content);

/// Takes the first element off and returns its content; nothing, and nothing is taken, when there
/// is no such element.
[[nodiscard]] std::optional<std::string_view> TakeElement(std::string_view& der, Tag tag);

/// label: what the text calls it, such as PUBLIC KEY.
[[nodiscard]] std::string ToPem(std::string_view label, std::string_view der);

/// Nothing when the text holds nothing that is called so, or when that is not whole.
[[nodiscard]] std::optional<std::string> FromPem(std::string_view text, std::string_view label);

}  // namespace publish
