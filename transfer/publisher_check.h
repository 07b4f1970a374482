#pragma once

// Where the application names its publisher's key, nothing is carried out that the publisher did
// not sign: the script, the files that it has downloaded, and the newer updater.

#include <optional>
#include <string>
#include <string_view>

#include "platform/signature.h"
#include "transfer/signed_script.h"

namespace modPrincipal {

/// What the publisher signed may be downloaded; nothing when the application names no key. Written
/// by AcceptScript.
extern std::optional<modFunciones::Digests> PublishedDigests;

/// False when UpdateInfoUrl names a key and the script is not signed by it. An empty text, which is
/// what a failed download leaves, is accepted: it is no script, and nothing may be downloaded.
[[nodiscard]] bool AcceptScript(std::string_view script);

/// Whether a download is what the publisher signed for its URL. Where the application names no key
/// everything is.
class PublisherCheck {
 public:
  PublisherCheck();

  /// Takes the next bytes of the download.
  void Add(std::string_view bytes);

  [[nodiscard]] bool Passes(const std::string& url) &&;

 private:
  platform::signature::Digest digest;
};

}  // namespace modPrincipal
