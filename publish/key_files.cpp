#include "publish/key_files.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

#include "base/text.h"
#include "platform/private_file.h"
#include "publish/order.h"
#include "publish/source.h"
#include "transfer/signed_script.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
using Problems = std::vector<std::string>;

constexpr unsigned NewKeyBits = 3072;

/// The folders that a path lies in, as it is written and where its links lead.
std::vector<fs::path> FoldersOf(const fs::path& path) {
  std::vector<fs::path> folders;
  for (fs::path at : {fs::absolute(path).lexically_normal(), fs::weakly_canonical(path)}) {
    for (; at != at.parent_path(); at = at.parent_path()) folders.push_back(at.parent_path());
  }
  return folders;
}

bool IsInside(const fs::path& path, const fs::path& folder) {
  const auto folders = FoldersOf(path);
  return std::any_of(folders.begin(), folders.end(), [&](const fs::path& one) {
    std::error_code error;
    return fs::equivalent(one, folder, error);
  });
}

/// The folder around a path, near or far, that an update script lies in; empty when there is none.
fs::path UploadFolderAround(const fs::path& path) {
  const auto folders = FoldersOf(path);
  const auto found = std::find_if(folders.begin(), folders.end(), [](const fs::path& folder) {
    std::error_code error;
    return fs::exists(folder / ScriptName, error);
  });
  return found == folders.end() ? fs::path() : *found;
}

std::string Exposed(const std::string& file, const fs::path& folder) {
  return file + " is, or would be, a private key in " + Utf8Of(folder) +
         ", which others get: keep it elsewhere.";
}

std::string AboutFile(const std::string& file, const std::string& what) {
  return file + " " + what + ".";
}

}  // namespace

std::string MakeKeyFiles(const fs::path& path, Problems& problems) {
  fs::path publicPath = path;
  publicPath += PublicKeySuffix;
  for (const auto& file : {path, publicPath}) {
    if (!fs::exists(fs::symlink_status(file))) continue;
    problems.push_back(Utf8Of(file) + " is there already; no key is ever written over.");
  }
  const fs::path upload = UploadFolderAround(path);
  if (!upload.empty()) problems.push_back(Exposed(Utf8Of(path), upload));
  if (!problems.empty()) return "";

  const auto key = MakeKey(NewKeyBits);
  if (!key) {
    problems.emplace_back("The system gives no random numbers for a key.");
  } else if (!platform::private_file::Create(path, key->privateFile) ||
             !WriteFile(publicPath, key->publicFile)) {
    problems.push_back(Utf8Of(path) + " and the public key beside it cannot be written.");
  }
  return problems.empty() ? FingerprintOf(key->key.PublicKey()) : "";
}

std::vector<PrivateKey> LoadPrivateKeys(const std::vector<std::string>& files,
                                        const std::vector<fs::path>& publicFolders,
                                        Problems& problems) {
  std::vector<PrivateKey> keys;
  for (const auto& file : files) {
    for (const auto& folder : publicFolders) {
      if (IsInside(PathOf(file), folder)) problems.push_back(Exposed(file, folder));
    }
    const auto content = ReadFile(PathOf(file));
    std::string why = content ? "" : "cannot be read";
    auto key = content ? ReadPrivateKey(*content, why) : std::nullopt;
    if (!why.empty()) problems.push_back(AboutFile(file, why));
    const bool isKnown = key && std::any_of(keys.begin(), keys.end(), [&](const auto& known) {
                           return known.modulus == key->modulus;
                         });
    if (key && !isKnown) keys.push_back(*std::move(key));
  }
  return keys;
}

std::optional<std::string> FingerprintMeant(const std::string& digitsOrFile,
                                            const fs::path& publicFolder, Problems& problems) {
  const auto content = ReadFile(PathOf(digitsOrFile));
  if (!content && modFunciones::IsSha256(digitsOrFile))
    return modFunciones::LowerCase(digitsOrFile);
  std::string why = content ? "" : "is no file that can be read, and no 64 digits";
  const auto key = content ? ReadPublicKey(*content, why) : std::nullopt;
  if (!why.empty()) problems.push_back(AboutFile(digitsOrFile, why));
  if (!key) return std::nullopt;
  if (HoldsPrivateKey(*content) && IsInside(PathOf(digitsOrFile), publicFolder)) {
    problems.push_back(Exposed(digitsOrFile, publicFolder));
  }
  return FingerprintOf(*key);
}

bool IsPrivateKeyFile(const fs::path& path) {
  std::array<char, 65'536> start;
  std::ifstream file(path, std::ios::binary);
  file.read(start.data(), start.size());
  return HoldsPrivateKey({start.data(), static_cast<std::size_t>(file.gcount())});
}

std::string FingerprintOf(const std::string& publicKey) {
  return modFunciones::Sha256Text(publicKey);
}

}  // namespace publish
