#include "publish/signing.h"

#include <algorithm>
#include <string_view>

#include "base/binary_text.h"
#include "publish/key_files.h"
#include "publish/progress.h"
#include "publish/source.h"
#include "publish/upload.h"

namespace publish {
namespace {

namespace fs = std::filesystem;
using Problems = std::vector<std::string>;
using modFunciones::Base64Text;

std::string WithoutLines(const std::string& script, std::string_view mark) {
  std::string rest;
  for (std::size_t at = 0; at < script.size();) {
    const std::size_t end = std::min(script.find('\n', at), script.size() - 1) + 1;
    const std::string line = script.substr(at, end - at);
    if (!line.starts_with(mark)) rest += line;
    at = end;
  }
  return rest;
}

/// The digest of each file that users may download.
Digests DigestsFor(const Script& script, const fs::path& folder, const Signing& signing,
                   Problems& problems) {
  Digests digests;
  const auto downloads = DownloadsIn(script);
  StartProgress("Reading files", downloads.size());
  for (std::size_t i = 0; i < downloads.size(); ShowProgress(++i)) {
    const auto& [line, url] = downloads[i];
    if (digests.contains(url)) continue;
    const fs::path file =
        line == 0 && !signing.updater.empty() ? signing.updater : FileAtHand(folder, url);
    const auto known = signing.known.find(url);
    const auto digest = DigestOfFile(file);
    if (digest) {
      digests[url] = *digest;
    } else if (file.empty() && known != signing.known.end()) {
      digests.insert(*known);
    } else {
      problems.push_back("The file of " + url + " is not beside the script" +
                         (line == 0 ? ": put it there, or name it with sign --updater." : "."));
    }
  }
  EndProgress();
  return digests;
}

std::string DigestLine(const std::string& digest, const std::string& url) {
  return std::string(modFunciones::DigestMark) + digest + "|" + url + "\n";
}

}  // namespace

std::string WithoutSignatures(const std::string& script) {
  return WithoutLines(script, modFunciones::SignatureMark);
}

std::string SignatureLine(const std::string& text, const PrivateKey& key) {
  return std::string(modFunciones::SignatureMark) + Base64Text(key.PublicKey()) + "|" +
         Base64Text(SignatureOf(text, key)) + "\n";
}

void SignFile(const fs::path& script, const Signing& signing, Problems& problems) {
  const auto content = ReadFile(script);
  if (!content) {
    problems.push_back(Utf8Of(script) + " " + WhyUnreadable(Utf8Of(script)) + ".");
    return;
  }
  std::string text = WithoutLines(WithoutSignatures(*content), modFunciones::DigestMark);
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  const Digests digests =
      DigestsFor(CutWithNumbers(text), fs::absolute(script).parent_path(), signing, problems);
  for (const auto& [url, digest] : digests) text += DigestLine(digest, url);
  std::string signatures;
  for (const auto& key : signing.keys) signatures += SignatureLine(text, key);
  text += signatures;
  for (const auto& key : signing.keys) {
    if (modFunciones::SignedDigests(text, FingerprintOf(key.PublicKey())) == digests) continue;
    problems.emplace_back("A signature that was made does not fit: its private key is damaged.");
  }
  if (problems.empty() && !WriteFile(script, text)) {
    problems.push_back(Utf8Of(script) + " cannot be written.");
  }
}

Digests DigestsSignedBy(const std::vector<PrivateKey>& keys, const fs::path& script) {
  const std::string text = ReadFile(script).value_or("");
  for (const auto& key : keys) {
    if (auto digests = modFunciones::SignedDigests(text, FingerprintOf(key.PublicKey()))) {
      return *std::move(digests);
    }
  }
  return {};
}

}  // namespace publish
