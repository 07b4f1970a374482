#include "publish/site.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/text.h"
#include "publish/key_files.h"
#include "publish/source.h"
#include "publish/upload.h"

namespace publish {
namespace {

namespace fs = std::filesystem;

bool IsPrivateKey(const fs::directory_entry& entry) {
  std::error_code error;
  return entry.is_regular_file(error) && IsPrivateKeyFile(entry.path());
}

void CheckPrivateKeys(const fs::path& folder, Findings& findings) {
  std::error_code error;
  for (fs::recursive_directory_iterator
           entry(folder, fs::directory_options::skip_permission_denied, error),
       end;
       !error && entry != end; entry.increment(error)) {
    if (!IsPrivateKey(*entry)) continue;
    const std::string name = Utf8Of(entry->path().lexically_relative(folder));
    findings.push_back({Severity::Error, 0,
                        "The upload folder holds a private key, " +
                            modFunciones::FromUtf8(name).value_or("in a file with an odd name") +
                            ", which others would get: keep it elsewhere."});
  }
}

}  // namespace

Site::Site(fs::path folder, const Script& script) : root(std::move(folder)) {
  constexpr std::size_t Enough = 101;  // with the updater
  std::map<std::string, int> found;
  for (const auto& [line, url] : DownloadsIn(script, Enough)) {
    if (line == 0) continue;  // the updater may be kept elsewhere
    const auto end = EndAtHand(root, url);
    const std::string candidate = end == std::string::npos ? "" : url.substr(0, end);
    if (!candidate.empty() && ++found[candidate] > found[base]) base = candidate;
  }
}

std::optional<fs::path> Site::FileOf(const std::string& url) const {
  if (base.empty() || !url.starts_with(base)) return std::nullopt;
  return FileNamed(root, url.substr(base.size()));
}

void CheckSite(const Script& script, const Site& site, Findings& findings) {
  if (site.Url().empty()) return;
  CheckPrivateKeys(site.Folder(), findings);
  for (const auto& [line, url] : DownloadsIn(script)) {
    const auto file = line == 0 ? std::nullopt : site.FileOf(url);
    if (!file) continue;
    std::error_code error;
    const auto size = fs::file_size(*file, error);
    if (error) {
      findings.push_back({Severity::Error, script.numbers[line],
                          "The upload folder has no file for this URL, though it has others."});
    } else if (size == 0) {
      findings.push_back(
          {Severity::Warning, script.numbers[line], "The file in the upload folder is empty."});
    }
  }
}

}  // namespace publish
