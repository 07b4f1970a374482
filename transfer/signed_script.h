#pragma once

// An application names its publisher's key behind the URL of its script:
//
//   https://updates.example/ledger.txt#key=<64 digits>    SHA-256 of the public key
//
// and the script says, in comment lines, what the files are and that all of it comes from there:
//
//   #SHA256|<64 digits>|<URL>                             what the URL delivers; anywhere above
//   #SIGNATURE|<public key>|<signature>                   last, of every byte above the first such
//                                                         line; both in Base64, the key as DER
//
// Several signatures let a publisher change keys: one that fits is enough.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace modFunciones {

inline constexpr std::string_view DigestMark = "#SHA256|";
inline constexpr std::string_view SignatureMark = "#SIGNATURE|";

/// The URL without the key that it names: what a server is asked for.
[[nodiscard]] std::string WithoutKey(std::string_view url);

/// What stands where a URL names a key, in lower case; nothing when it names none. Whatever is no
/// SHA-256 fits no key.
[[nodiscard]] std::optional<std::string> NamedKey(std::string_view url);

/// Takes the first line off a text, and gives it without its end.
[[nodiscard]] std::string_view TakeLine(std::string_view& text);

/// True for 64 hexadecimal digits.
[[nodiscard]] bool IsSha256(std::string_view text);

/// A SHA-256 as 64 digits, letters in lower case; "" when the system cannot tell.
[[nodiscard]] std::string Sha256Text(std::string_view bytes);

/// SHA-256, as 64 digits in lower case, of what each URL delivers.
using Digests = std::map<std::string, std::string, std::less<>>;

/// The digests that a text names, whoever wrote it; nothing when a line about one is not as it has
/// to be.
[[nodiscard]] std::optional<Digests> DigestsIn(std::string_view text);

/// The digests that a script names; nothing when the script is not signed by the key that is
/// named, or a line about digests or signatures is not as it has to be.
[[nodiscard]] std::optional<Digests> SignedDigests(std::string_view script, std::string_view key);

}  // namespace modFunciones
