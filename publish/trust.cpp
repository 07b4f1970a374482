#include "publish/trust.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/arrays.h"
#include "base/binary_text.h"
#include "publish/key_files.h"
#include "publish/progress.h"
#include "publish/source.h"
#include "publish/upload.h"
#include "transfer/http_probe.h"
#include "transfer/signed_script.h"

namespace publish {
namespace {

using modFunciones::DigestMark;
using modFunciones::DigestsIn;
using modFunciones::SignatureMark;
using modFunciones::SignedDigests;

using modFunciones::Digests;
using Lines = std::vector<std::string>;

/// An empty script is none, so that the reader refuses it.
std::optional<Digests> DigestsTaken(const Script& script, const std::string& key) {
  return script.text.empty() ? Digests() : SignedDigests(script.text, key);
}

/// Why a file is not taken, as a sentence; empty when it is.
std::string WhyRefused(const std::string& url, const Digests& digests,
                       const std::filesystem::path& folder, bool probe) {
  const std::string refused = ": installations that name a key do not take it.";
  const auto published = digests.find(url);
  if (published == digests.end()) return "The file has no #SHA256 line" + refused;
  const auto file = FileAtHand(folder, url);
  if (!file.empty() && DigestOfFile(file) != published->second) {
    return "The #SHA256 line is not that of the file beside the script" + refused;
  }
  if (!probe) return "";
  const auto received = modFunciones::AvailableLength(url) ? DigestOfUrl(url) : std::nullopt;
  if (!received) return "The server does not have the file, or not whole" + refused;
  if (received == published->second) return "";
  return "The server sends another file than the #SHA256 line says" + refused;
}

/// Nobody has to name a key for that.
std::string WhyMissing(const std::string& url) {
  if (modFunciones::AvailableLength(url)) return "";
  return "The server does not have the file: installations that need it refuse the update.";
}

/// Looks once at each URL, and tells those of which there is something to tell.
template <typename Why, typename Tell>
void ForOddDownloads(const Script& script, Why why, Tell tell) {
  std::map<std::string, std::string> reasons;
  const auto downloads = DownloadsIn(script);
  StartProgress("Reading files", downloads.size());
  for (std::size_t i = 0; i < downloads.size(); ShowProgress(++i)) {
    const auto& [line, url] = downloads[i];
    if (!reasons.contains(url)) reasons[url] = why(url);
    if (!reasons[url].empty()) tell(downloads[i], reasons[url]);
  }
  EndProgress();
}

/// What stands between the bars of a line, or nothing where there is no such field.
std::string KeyNamedBy(std::string_view signatureLine) {
  const Lines fields = modFunciones::Split(signatureLine, '|');
  const auto key = fields.size() == 3 ? modFunciones::FromBase64(fields[1]) : std::nullopt;
  return key ? FingerprintOf(*key) : "";
}

bool HasLine(const std::string& text, std::string_view mark) {
  auto at = text.find(mark);
  while (at != std::string::npos && at > 0 && text[at - 1] != '\n') at = text.find(mark, at + 1);
  return at != std::string::npos;
}

/// The text line by line, with the rules for those about digests and signatures.
class SigningLines {
 public:
  SigningLines(const Script& script, Findings& all) : text(script.text), findings(all) {
    for (std::string_view rest = text; !rest.empty();) {
      lines.push_back(modFunciones::TakeLine(rest));
    }
    while (firstSignature < lines.size() && !IsSignature(firstSignature)) ++firstSignature;
  }

  /// Finds the first kind of fault that there is; one makes the others look wrong.
  void Check() {
    if (firstSignature == lines.size()) {
      Tell(0, "There are #SHA256 lines but no signature: installations that name a key refuse it.");
      return;
    }
    const std::size_t before = findings.size();
    for (const auto rule : {&SigningLines::Digest, &SigningLines::Order, &SigningLines::Form,
                            &SigningLines::Signature}) {
      for (std::size_t i = 0; i < lines.size(); ++i) (this->*rule)(i);
      if (findings.size() > before) return;
    }
    if (!DigestsIn(text)) Tell(0, "Two #SHA256 lines say different things of one URL.");
  }

 private:
  [[nodiscard]] bool IsSignature(std::size_t i) const {
    return lines[i].starts_with(SignatureMark);
  }

  void Tell(std::size_t line, const std::string& what) {
    findings.push_back({Severity::Error, static_cast<int>(line), what});
  }

  void Digest(std::size_t i) {
    if (DigestsIn(lines[i])) return;
    Tell(i + 1, "The line is no #SHA256|64 digits|URL: installations that name a key refuse it.");
  }
  void Order(std::size_t i) {
    if (i < firstSignature || IsSignature(i) || lines[i].empty()) return;
    Tell(i + 1, "Behind a signature only others may stand: sign the script once more.");
  }
  void Form(std::size_t i) {
    if (!IsSignature(i) || !KeyNamedBy(lines[i]).empty()) return;
    Tell(i + 1,
         "The line is no #SIGNATURE|key|signature: installations that name a key refuse it.");
  }
  void Signature(std::size_t i) {
    if (!IsSignature(i) || SignedDigests(text, KeyNamedBy(lines[i]))) return;
    Tell(i + 1, "The signature does not fit: installations that name its key refuse the script.");
  }

  const std::string& text;
  Findings& findings;
  std::vector<std::string_view> lines;
  std::size_t firstSignature = 0;  // as many as there are lines when there is none
};

}  // namespace

std::vector<std::string> KeysNamedIn(const std::string& text) {
  Lines keys;
  for (std::string_view rest = text; !rest.empty();) {
    const auto line = modFunciones::TakeLine(rest);
    if (line.starts_with(SignatureMark)) keys.push_back(KeyNamedBy(line));
  }
  return keys;
}

bool IsTaken(const Script& script, const std::optional<std::string>& key) {
  return !key || DigestsTaken(script, *key).has_value();
}

Trust TrustIn(const Script& script, const Origin& origin) {
  if (!origin.key) return {};
  const auto digests = DigestsTaken(script, *origin.key);
  if (!digests) return {.takesScript = false};
  Trust trust = {.checksFiles = true};
  ForOddDownloads(
      script, [&](const auto& url) { return WhyRefused(url, *digests, origin.folder, false); },
      [&](const Download& download, const auto& /*why*/) {
        trust.refusedUrls.insert(download.url);
      });
  return trust;
}

void CheckSigning(const Script& script, const Origin& origin, bool probe, Findings& findings) {
  const bool isSigned = HasLine(script.text, DigestMark) || HasLine(script.text, SignatureMark);
  if (isSigned) SigningLines(script, findings).Check();
  if (!IsTaken(script, origin.key)) {
    findings.push_back({Severity::Error, 0,
                        "No signature is that of the key that installations name, " + *origin.key +
                            ": they refuse the script."});
  }
  const auto tell = [&](const Download& download, const std::string& why) {
    findings.push_back({Severity::Error, script.numbers[download.line], why});
  };
  if (isSigned || origin.key) {
    const Digests digests = DigestsIn(script.text).value_or(Digests());
    const auto why = [&](const auto& url) {
      return WhyRefused(url, digests, origin.folder, probe);
    };
    ForOddDownloads(script, why, tell);
  } else if (probe) {
    ForOddDownloads(script, WhyMissing, tell);
  }
}

}  // namespace publish
