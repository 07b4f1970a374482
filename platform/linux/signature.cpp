#include "platform/signature.h"

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <array>

namespace platform::signature {
namespace {

const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};

}  // namespace

void CloseDigest::operator()(void* digest) const {
  EVP_MD_CTX_free(static_cast<EVP_MD_CTX*>(digest));
}

Digest StartDigest() {
  Digest digest(EVP_MD_CTX_new());
  const bool started = digest && EVP_DigestInit_ex(static_cast<EVP_MD_CTX*>(digest.get()),
                                                   EVP_sha256(), nullptr) == 1;
  return started ? std::move(digest) : nullptr;
}

void Add(const Digest& digest, std::string_view bytes) {
  // It does not fail once it is started.
  if (digest) EVP_DigestUpdate(static_cast<EVP_MD_CTX*>(digest.get()), bytes.data(), bytes.size());
}

std::string Finish(Digest digest) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned length = 0;
  if (!digest ||
      EVP_DigestFinal_ex(static_cast<EVP_MD_CTX*>(digest.get()), bytes.data(), &length) != 1) {
    return "";
  }
  return {bytes.begin(), bytes.begin() + length};
}

bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature) {
  const unsigned char* position = BytesOf(publicKey);
  const std::unique_ptr<EVP_PKEY, FreeKey> key(
      d2i_PUBKEY(nullptr, &position, static_cast<long>(publicKey.size())));
  if (!key || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) return false;
  const auto bits = static_cast<unsigned>(EVP_PKEY_get_bits(key.get()));
  if (bits < LeastKeyBits || bits > MostKeyBits) return false;

  const Digest context(EVP_MD_CTX_new());
  auto* const verifier = static_cast<EVP_MD_CTX*>(context.get());
  return verifier != nullptr &&
         EVP_DigestVerifyInit(verifier, nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
         EVP_DigestVerify(verifier, BytesOf(signature), signature.size(), BytesOf(message),
                          message.size()) == 1;
}

}  // namespace platform::signature
