#include "platform/signature.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstddef>
#include <vector>

#include "platform/windows/background.h"
#include "platform/windows/libraries.h"

namespace platform::signature {
namespace {

using windows_layer::FunctionOf;
using windows_layer::LoadSystemLibrary;
using windows_layer::Worker;

// wincrypt.h hides it from programs that start on systems which do not know it.
constexpr ALG_ID Sha256 = ALG_CLASS_HASH | ALG_TYPE_ANY | 12;
constexpr DWORD Sha256Size = 32;  // bytes

/// What a digest hands to its thread at once, in bytes: it takes longer than waking the thread.
constexpr std::size_t Batch = 128 * 1024;

/// Acquired at first use and kept; 0 where the system has none.
HCRYPTPROV Provider() {
  static const HCRYPTPROV provider = [] {
    HCRYPTPROV acquired = 0;
    CryptAcquireContextA(&acquired, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT);
    return acquired;
  }();
  return provider;
}

/// One for all digests, started with the first: a component that hangs may keep a later thread from
/// beginning. Null where there is none.
Worker* TheWorker() {
  static Worker* const worker = windows_layer::NewWorker();
  return worker;
}

/// Hashing takes about as long as receiving, so the bytes are taken by another thread.
struct Hash {
  Hash() { failed = CryptCreateHash(Provider(), Sha256, 0, 0, &handle) == FALSE; }
  ~Hash() {
    WaitForBatch();
    CryptDestroyHash(handle);
  }
  Hash(const Hash&) = delete;
  Hash& operator=(const Hash&) = delete;

  void Add(std::string_view bytes) {
    if (waiting.empty() && bytes.size() >= Batch) {
      WaitForBatch();
      return Take(bytes);
    }
    waiting += bytes;
    if (waiting.size() < Batch) return;
    WaitForBatch();
    taken.swap(waiting);
    waiting.clear();
    if (worker == nullptr) return Take(taken);
    worker->Start([this] { Take(taken); });
  }

  /// Takes what was added and not yet taken.
  void TakeRest() {
    WaitForBatch();
    Take(waiting);
  }

  void WaitForBatch() const {
    if (worker != nullptr) WaitForSingleObject(worker->done, INFINITE);
  }

  void Take(std::string_view bytes) {
    failed = failed || CryptHashData(handle, reinterpret_cast<const BYTE*>(bytes.data()),
                                     static_cast<DWORD>(bytes.size()), 0) == FALSE;
  }

  HCRYPTHASH handle = 0;
  bool failed = false;
  std::string waiting;
  std::string taken;  // by the thread, unless that is done
  Worker* worker = TheWorker();
};

Hash& HashOf(const Digest& digest) { return *static_cast<Hash*>(digest.get()); }

/// The key of a SubjectPublicKeyInfo in a form that the provider works with.
struct Key {
  explicit Key(std::string_view der) {
    const HMODULE library = LoadSystemLibrary("crypt32.dll");
    const auto decode = FunctionOf<decltype(CryptDecodeObjectEx)>(library, "CryptDecodeObjectEx");
    const auto import =
        FunctionOf<decltype(CryptImportPublicKeyInfo)>(library, "CryptImportPublicKeyInfo");
    CERT_PUBLIC_KEY_INFO* info = nullptr;
    DWORD size = 0;
    if (decode == nullptr || import == nullptr ||
        decode(X509_ASN_ENCODING, X509_PUBLIC_KEY_INFO, reinterpret_cast<const BYTE*>(der.data()),
               static_cast<DWORD>(der.size()), CRYPT_DECODE_ALLOC_FLAG, nullptr, &info,
               &size) == FALSE) {
      return;
    }
    if (std::string_view(info->Algorithm.pszObjId) == szOID_RSA_RSA) {
      import(Provider(), X509_ASN_ENCODING, info, &handle);
    }
    LocalFree(info);
  }
  ~Key() { CryptDestroyKey(handle); }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  /// Length of the modulus; 0 where there is no key.
  [[nodiscard]] DWORD Bits() const {
    DWORD bits = 0;
    DWORD size = sizeof bits;
    CryptGetKeyParam(handle, KP_KEYLEN, reinterpret_cast<BYTE*>(&bits), &size, 0);
    return bits;
  }

  HCRYPTKEY handle = 0;
};

}  // namespace

void CloseDigest::operator()(void* digest) const { delete static_cast<Hash*>(digest); }

Digest StartDigest() { return Digest(new Hash); }

void Add(const Digest& digest, std::string_view bytes) { HashOf(digest).Add(bytes); }

std::string Finish(Digest digest) {
  std::string bytes(Sha256Size, '\0');
  DWORD size = Sha256Size;
  Hash& hash = HashOf(digest);
  hash.TakeRest();
  if (hash.failed || CryptGetHashParam(hash.handle, HP_HASHVAL,
                                       reinterpret_cast<BYTE*>(bytes.data()), &size, 0) == FALSE) {
    return "";
  }
  return bytes;
}

bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature) {
  const Key key(publicKey);
  const DWORD bits = key.Bits();
  if (bits < LeastKeyBits || bits > MostKeyBits || signature.size() != (bits + 7) / 8) return false;
  Hash hash;
  hash.Add(message);
  hash.TakeRest();
  // The provider wants the least significant byte first.
  const std::vector<BYTE> reversed(signature.rbegin(), signature.rend());
  return !hash.failed &&
         CryptVerifySignatureA(hash.handle, reversed.data(), static_cast<DWORD>(reversed.size()),
                               key.handle, nullptr, 0) != FALSE;
}

}  // namespace platform::signature
