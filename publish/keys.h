#pragma once

// RSA keys that sign, made and used with libgcrypt, in the files of openssl: PEM, with the private
// key as PKCS #8 or PKCS #1. What checks signatures is the program's own.

#include <optional>
#include <string>
#include <string_view>

namespace publish {

/// Numbers as the content of DER's integers.
struct PrivateKey {
  std::string modulus;
  std::string publicExponent;
  std::string privateExponent;

  /// DER of the SubjectPublicKeyInfo.
  [[nodiscard]] std::string PublicKey() const;
};

struct NewKey {
  PrivateKey key;
  std::string privateFile;  // what the files hold
  std::string publicFile;
};

/// Nothing when the library cannot make one.
[[nodiscard]] std::optional<NewKey> MakeKey(unsigned bits);

/// Reads the text of a file. Nothing, with the reason as the end of a sentence in problem, when it
/// holds no key that signs updates.
[[nodiscard]] std::optional<PrivateKey> ReadPrivateKey(std::string_view file, std::string& problem);

/// The same for the public key of either file: the DER of its SubjectPublicKeyInfo.
[[nodiscard]] std::optional<std::string> ReadPublicKey(std::string_view file, std::string& problem);

/// True for a file with a line that begins a private key of any kind in PEM.
[[nodiscard]] bool HoldsPrivateKey(std::string_view file);

/// RSASSA-PKCS1-v1_5 with SHA-256; empty when the key is not good for it.
[[nodiscard]] std::string SignatureOf(std::string_view message, const PrivateKey& key);

}  // namespace publish
