// A URL that may name a key, and a script that may be signed.

#include "transfer/signed_script.h"
#include "fuzz/fuzz.h"
#include "script/reader.h"

void Fuzz(const std::string& firstLine, const std::string& rest) {
  using namespace modFunciones;

  const std::string url = WithoutKey(firstLine);
  Require(firstLine.starts_with(url) && !NamedKey(url));
  const auto named = NamedKey(firstLine);
  Require(named.has_value() == (url != firstLine));
  if (named) Require(url.size() + 5 + named->size() <= firstLine.size());

  const auto digests = SignedDigests(rest, std::string(64, '0'));
  Require(!SignedDigests(rest, std::string(63, '0')));
  if (!digests) return;
  // The program reads what was signed and nothing else.
  const std::string& content = machine.signedMessage;
  Require(!content.empty() && rest.starts_with(content) && rest != content);
  Require(modPrincipal::CutScript(rest) == modPrincipal::CutScript(content));
  for (const auto& [name, digest] : *digests) {
    Require(digest.size() == 64 && content.find('|' + name) != std::string::npos);
  }
}
