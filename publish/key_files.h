#pragma once

// The files of keys, and where they must not lie.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publish/keys.h"

namespace publish {

/// The public key lies beside the private one, under its name with this behind.
inline constexpr const char* PublicKeySuffix = ".pub";

/// Makes a key: the private one in a file that its owner alone may read. Neither file is ever
/// written over. Returns its fingerprint, or "" with sentences in problems.
[[nodiscard]] std::string MakeKeyFiles(const std::filesystem::path& path,
                                       std::vector<std::string>& problems);

/// Reads private keys, one that is named twice once. None of them may lie in one of the folders or
/// below.
[[nodiscard]] std::vector<PrivateKey> LoadPrivateKeys(
    const std::vector<std::string>& files, const std::vector<std::filesystem::path>& publicFolders,
    std::vector<std::string>& problems);

/// The fingerprint that is meant by 64 digits, or by the file of a public or private key.
[[nodiscard]] std::optional<std::string> FingerprintMeant(const std::string& digitsOrFile,
                                                          const std::filesystem::path& publicFolder,
                                                          std::vector<std::string>& problems);

/// Whether a private key in PEM begins in the first 64 KB of a file.
[[nodiscard]] bool IsPrivateKeyFile(const std::filesystem::path& path);

/// What stands behind "#key=" for a public key, given as DER.
[[nodiscard]] std::string FingerprintOf(const std::string& publicKey);

}  // namespace publish
