#include "publish/keys.h"

#include <gcrypt.h>

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "platform/signature.h"
#include "publish/der.h"

namespace publish {
namespace {

constexpr const char* Pkcs8Label = "PRIVATE KEY";
constexpr const char* Pkcs1Label = "RSA PRIVATE KEY";
constexpr const char* PublicLabel = "PUBLIC KEY";

/// 1.2.840.113549.1.1.1
constexpr std::string_view RsaIdentifier = "\x2A\x86\x48\x86\xF7\x0D\x01\x01\x01";

struct Release {
  void operator()(gcry_sexp_t expression) const { gcry_sexp_release(expression); }
  void operator()(gcry_mpi_t number) const { gcry_mpi_release(number); }
};
using Expression = std::unique_ptr<gcry_sexp, Release>;
using Number = std::unique_ptr<gcry_mpi, Release>;

/// The library wants to be started, and on Windows would speak of disk statistics.
void StartLibrary() {
  static const bool started = [] {
    gcry_check_version(nullptr);
    gcry_set_log_handler([](void*, int, const char*, va_list) {}, nullptr);
    gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
    return gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0) == 0;
  }();
  (void)started;
}

/// Null when format and values make none.
template <typename... Values>
Expression Build(const char* format, const Values&... values) {
  gcry_sexp_t built = nullptr;
  return Expression(gcry_sexp_build(&built, nullptr, format, values...) == 0 ? built : nullptr);
}

int SizeOf(const std::string& bytes) { return static_cast<int>(bytes.size()); }

/// A number of an expression, by its name of one letter.
Number NumberIn(const Expression& expression, const char* name) {
  const Expression found(gcry_sexp_find_token(expression.get(), name, 1));
  return Number(found ? gcry_sexp_nth_mpi(found.get(), 1, GCRYMPI_FMT_USG) : nullptr);
}

std::string BytesOf(const Number& number, gcry_mpi_format format) {
  std::size_t size = 0;
  gcry_mpi_print(format, nullptr, 0, &size, number.get());
  std::string bytes(size, '\0');
  gcry_mpi_print(format, reinterpret_cast<unsigned char*>(bytes.data()), size, nullptr,
                 number.get());
  return bytes;
}

std::string IntegerOf(const Number& number) {
  return Element(Tag::Integer, BytesOf(number, GCRYMPI_FMT_STD));
}

/// What is left of the private exponent for one of the primes.
Number ExponentFor(const Number& prime, const Number& privateExponent) {
  const Number lessOne(gcry_mpi_new(0));
  Number exponent(gcry_mpi_new(0));
  gcry_mpi_sub_ui(lessOne.get(), prime.get(), 1);
  gcry_mpi_mod(exponent.get(), privateExponent.get(), lessOne.get());
  return exponent;
}

std::string RsaAlgorithm() {
  return Element(Tag::Sequence,
                 Element(Tag::ObjectIdentifier, RsaIdentifier) + Element(Tag::Null, ""));
}

std::string VersionZero() { return Element(Tag::Integer, std::string(1, '\0')); }

/// The DER of PKCS #8, or nothing. The library's u is the inverse of p, the file's coefficient that
/// of its second prime: so p comes second.
std::optional<std::string> PrivateKeyInfo(const Expression& key) {
  const Number n = NumberIn(key, "n");
  const Number e = NumberIn(key, "e");
  const Number d = NumberIn(key, "d");
  const Number p = NumberIn(key, "p");
  const Number q = NumberIn(key, "q");
  const Number u = NumberIn(key, "u");
  if (!n || !e || !d || !p || !q || !u) return std::nullopt;
  const std::string rsaPrivateKey =
      Element(Tag::Sequence, VersionZero() + IntegerOf(n) + IntegerOf(e) + IntegerOf(d) +
                                 IntegerOf(q) + IntegerOf(p) + IntegerOf(ExponentFor(q, d)) +
                                 IntegerOf(ExponentFor(p, d)) + IntegerOf(u));
  return Element(Tag::Sequence,
                 VersionZero() + RsaAlgorithm() + Element(Tag::OctetString, rsaPrivateKey));
}

/// The RSAPrivateKey inside of a PrivateKeyInfo.
std::optional<std::string> TakeOutOfPkcs8(std::string_view der) {
  auto info = TakeElement(der, Tag::Sequence);
  if (!info || !TakeElement(*info, Tag::Integer)) return std::nullopt;
  auto algorithm = TakeElement(*info, Tag::Sequence);
  if (!algorithm || TakeElement(*algorithm, Tag::ObjectIdentifier) != RsaIdentifier) {
    return std::nullopt;
  }
  const auto key = TakeElement(*info, Tag::OctetString);
  return key ? std::optional<std::string>(*key) : std::nullopt;
}

std::optional<PrivateKey> FromPkcs1(std::string_view der) {
  auto key = TakeElement(der, Tag::Sequence);
  if (!key || !TakeElement(*key, Tag::Integer)) return std::nullopt;  // the version
  PrivateKey numbers;
  for (auto* number : {&numbers.modulus, &numbers.publicExponent, &numbers.privateExponent}) {
    const auto integer = TakeElement(*key, Tag::Integer);
    if (!integer) return std::nullopt;
    *number = *integer;
  }
  return numbers;
}

std::optional<PrivateKey> PrivateKeyIn(std::string_view file) {
  if (const auto pkcs8 = FromPem(file, Pkcs8Label)) {
    const auto pkcs1 = TakeOutOfPkcs8(*pkcs8);
    return pkcs1 ? FromPkcs1(*pkcs1) : std::nullopt;
  }
  const auto pkcs1 = FromPem(file, Pkcs1Label);
  return pkcs1 ? FromPkcs1(*pkcs1) : std::nullopt;
}

unsigned BitsOf(const std::string& integer) {
  gcry_mpi_t number = nullptr;
  gcry_mpi_scan(&number, GCRYMPI_FMT_USG, integer.data(), integer.size(), nullptr);
  return number == nullptr ? 0 : gcry_mpi_get_nbits(Number(number).get());
}

}  // namespace

std::string PrivateKey::PublicKey() const {
  const std::string numbers = Element(
      Tag::Sequence, Element(Tag::Integer, modulus) + Element(Tag::Integer, publicExponent));
  return Element(Tag::Sequence,
                 RsaAlgorithm() + Element(Tag::BitString, std::string(1, '\0') + numbers));
}

std::optional<NewKey> MakeKey(unsigned bits) {
  StartLibrary();
  gcry_sexp_t made = nullptr;
  if (gcry_pk_genkey(&made, Build("(genkey (rsa (nbits %u)))", bits).get()) != 0) {
    return std::nullopt;
  }
  const Expression key(made);
  const auto info = PrivateKeyInfo(Expression(gcry_sexp_find_token(made, "private-key", 0)));
  if (!info) return std::nullopt;
  const std::string file = ToPem(Pkcs8Label, *info);
  const auto numbers = PrivateKeyIn(file);
  if (!numbers) return std::nullopt;
  return NewKey{*numbers, file, ToPem(PublicLabel, numbers->PublicKey())};
}

std::optional<PrivateKey> ReadPrivateKey(std::string_view file, std::string& problem) {
  using namespace platform::signature;
  StartLibrary();
  auto key = PrivateKeyIn(file);
  const unsigned bits = key ? BitsOf(key->modulus) : 0;
  if (file.find("ENCRYPTED") != std::string_view::npos) {
    problem =
        "is encrypted: sign with openssl, as the guide shows, or decrypt it with openssl pkey";
  } else if (!key) {
    problem = "holds no private RSA key in PEM";
  } else if (bits < LeastKeyBits || bits > MostKeyBits) {
    problem = "holds a key of " + std::to_string(bits) + " bits, where the updater takes " +
              std::to_string(LeastKeyBits) + " to " + std::to_string(MostKeyBits);
  }
  return problem.empty() ? std::move(key) : std::nullopt;
}

std::optional<std::string> ReadPublicKey(std::string_view file, std::string& problem) {
  if (auto der = FromPem(file, PublicLabel)) return der;
  const auto key = ReadPrivateKey(file, problem);
  return key ? std::optional(key->PublicKey()) : std::nullopt;
}

bool HoldsPrivateKey(std::string_view file) {
  constexpr std::string_view Begin = "-----BEGIN ";
  for (auto at = file.find(Begin); at != std::string_view::npos; at = file.find(Begin, at + 1)) {
    const bool beginsLine = at == 0 || file[at - 1] == '\n';
    const auto line = file.substr(at, file.find_first_of("\r\n", at) - at);
    if (beginsLine && line.ends_with("PRIVATE KEY-----")) return true;
  }
  return false;
}

std::string SignatureOf(std::string_view message, const PrivateKey& key) {
  StartLibrary();
  auto digest = platform::signature::StartDigest();
  platform::signature::Add(digest, message);
  const std::string hash = platform::signature::Finish(std::move(digest));
  const Expression data = Build("(data (flags pkcs1) (hash sha256 %b))", SizeOf(hash), hash.data());
  const Expression signer =
      Build("(private-key (rsa (n %b) (e %b) (d %b)))", SizeOf(key.modulus), key.modulus.data(),
            SizeOf(key.publicExponent), key.publicExponent.data(), SizeOf(key.privateExponent),
            key.privateExponent.data());
  gcry_sexp_t made = nullptr;
  if (!data || !signer || gcry_pk_sign(&made, data.get(), signer.get()) != 0) return "";
  const Number number = NumberIn(Expression(made), "s");
  if (!number) return "";
  const std::string signature = BytesOf(number, GCRYMPI_FMT_USG);
  const std::size_t length = (BitsOf(key.modulus) + 7) / 8;
  return std::string(length - std::min(length, signature.size()), '\0') + signature;
}

}  // namespace publish
