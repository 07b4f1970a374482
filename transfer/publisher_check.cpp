#include "transfer/publisher_check.h"

#include <utility>

#include "base/binary_text.h"
#include "run/run_state.h"

namespace modPrincipal {

std::optional<modFunciones::Digests> PublishedDigests;

bool AcceptScript(std::string_view script) {
  PublishedDigests.reset();
  const auto key = modFunciones::NamedKey(UpdateInfoUrl);
  if (!key) return true;
  PublishedDigests =
      script.empty() ? modFunciones::Digests() : modFunciones::SignedDigests(script, *key);
  return PublishedDigests.has_value();
}

PublisherCheck::PublisherCheck() {
  if (PublishedDigests) digest = platform::signature::StartDigest();
}

void PublisherCheck::Add(std::string_view bytes) {
  if (PublishedDigests) platform::signature::Add(digest, bytes);
}

bool PublisherCheck::Passes(const std::string& url) && {
  if (!PublishedDigests) return true;
  const auto published = PublishedDigests->find(url);
  return published != PublishedDigests->end() &&
         published->second == modFunciones::HexText(platform::signature::Finish(std::move(digest)));
}

}  // namespace modPrincipal
