#include "platform/signature.h"

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <array>
#include <future>
#include <memory>
#include <utility>

namespace platform::signature {
namespace {

const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_MD_CTX, FreeContext>;

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};

/// What a thread takes at once, in bytes: it takes far longer than starting the thread.
constexpr std::size_t Batch = std::size_t{1} << 20U;

/// Hashing takes half as long as receiving, so the bytes are taken by another thread.
struct Hash {
  Hash() {
    if (context) EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
  }

  void Add(std::string_view bytes) {
    waiting += bytes;
    if (waiting.size() < Batch) return;
    Wait();
    taken.swap(waiting);
    waiting.clear();
    batch = std::async(std::launch::async, [this] { Take(taken); });
  }

  void Take(const std::string& bytes) const {
    EVP_DigestUpdate(context.get(), bytes.data(), bytes.size());
  }

  void Wait() const {
    if (batch.valid()) batch.wait();
  }

  Context context{EVP_MD_CTX_new()};
  std::string waiting;
  std::string taken;        // by the thread, unless that is done
  std::future<void> batch;  // its end waits for the thread
};

}  // namespace

void CloseDigest::operator()(void* digest) const { delete static_cast<Hash*>(digest); }

Digest StartDigest() {
  auto hash = std::make_unique<Hash>();
  return Digest(hash->context ? hash.release() : nullptr);
}

void Add(const Digest& digest, std::string_view bytes) {
  if (digest) static_cast<Hash*>(digest.get())->Add(bytes);
}

std::string Finish(Digest digest) {
  if (!digest) return "";
  auto& hash = *static_cast<Hash*>(digest.get());
  hash.Wait();
  hash.Take(hash.waiting);
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned length = 0;
  if (EVP_DigestFinal_ex(hash.context.get(), bytes.data(), &length) != 1) return "";
  return {bytes.begin(), bytes.begin() + length};
}

bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature) {
  const unsigned char* position = BytesOf(publicKey);
  const std::unique_ptr<EVP_PKEY, FreeKey> key(
      d2i_PUBKEY(nullptr, &position, static_cast<long>(publicKey.size())));
  if (!key || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) return false;
  const auto bits = static_cast<unsigned>(EVP_PKEY_get_bits(key.get()));
  if (bits < LeastKeyBits || bits > MostKeyBits) return false;

  const Context context(EVP_MD_CTX_new());
  return context &&
         EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), BytesOf(signature), signature.size(), BytesOf(message),
                          message.size()) == 1;
}

}  // namespace platform::signature
