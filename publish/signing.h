#pragma once

// Scripts that carry digests and signatures.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publish/keys.h"
#include "publish/script_text.h"
#include "transfer/signed_script.h"

namespace publish {

using modFunciones::Digests;

/// The script without its signatures, which fit no longer once anything else is changed.
[[nodiscard]] std::string WithoutSignatures(const std::string& script);

/// The line that signs all of a text that stands above it.
[[nodiscard]] std::string SignatureLine(const std::string& text, const PrivateKey& key);

/// What a script is signed with.
struct Signing {
  std::vector<PrivateKey> keys;   // none: digests only
  std::filesystem::path updater;  // the file that the header offers; empty: one beside the script
  Digests known;                  // of files that need not be beside the script
};

/// Puts a script into the form in which it is published: without its old digests and signatures,
/// with the digest of each file that it lets users download and, last, a signature with each key.
/// It is left as it is, with sentences in problems, when it cannot be read or written, when a file
/// is missing, or when a signature would not fit.
void SignFile(const std::filesystem::path& script, const Signing& signing,
              std::vector<std::string>& problems);

/// The digests of a script that one of the keys signed, if it is there and any of them did.
[[nodiscard]] Digests DigestsSignedBy(const std::vector<PrivateKey>& keys,
                                      const std::filesystem::path& script);

}  // namespace publish
