#pragma once

// What ties bytes to their publisher: SHA-256 and RSA signatures. Windows: CryptoAPI, which knows
// them from XP with service pack 3 on. Linux: libcrypto.

#include <memory>
#include <string>
#include <string_view>

namespace platform::signature {

struct CloseDigest {
  void operator()(void* digest) const;
};
/// A SHA-256 of bytes that are still arriving.
using Digest = std::unique_ptr<void, CloseDigest>;

/// An empty Digest where the system has no SHA-256; it may be used all the same.
[[nodiscard]] Digest StartDigest();

void Add(const Digest& digest, std::string_view bytes);

/// The 32 bytes of the digest; an empty text when anything failed since it was started.
[[nodiscard]] std::string Finish(Digest digest);

/// True when the signature of the message is that of the key's owner: RSASSA-PKCS1-v1_5 with
/// SHA-256, an RSA key of 2,048 to 4,096 bits as the DER of its SubjectPublicKeyInfo.
[[nodiscard]] bool IsSignedBy(std::string_view publicKey, std::string_view message,
                              std::string_view signature);

/// Bits that a key has at the least and at the most.
inline constexpr unsigned LeastKeyBits = 2048;
inline constexpr unsigned MostKeyBits = 4096;

}  // namespace platform::signature
