#include "publish/site.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/text.h"
#include "publish/key_files.h"
#include "publish/source.h"
#include "publish/upload.h"
#include "publish/urls.h"

namespace publish {
namespace {

namespace fs = std::filesystem;

fs::path PathBelow(const fs::path& folder, const std::string& part) {
  return folder / PathOf(Decoded(modFunciones::ToUtf8(part)));
}

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

/// What stands before the longest end of a URL that names a file of the folder; empty when none
/// does.
std::string BaseOf(const std::string& url, const fs::path& folder) {
  const auto host = url.find("//");
  if (host == std::string::npos) return "";
  for (auto at = url.find('/', host + 2); at != std::string::npos; at = url.find('/', at + 1)) {
    if (IsFile(PathBelow(folder, url.substr(at + 1)))) return url.substr(0, at + 1);
  }
  return "";
}

void CheckPrivateKeys(const fs::path& folder, Findings& findings) {
  std::error_code error;
  for (fs::recursive_directory_iterator
           entry(folder, fs::directory_options::skip_permission_denied, error),
       end;
       !error && entry != end; entry.increment(error)) {
    if (!IsFile(entry->path()) || !IsPrivateKeyFile(entry->path())) continue;
    const std::string name = Utf8Of(entry->path().lexically_relative(folder));
    findings.push_back({Severity::Error, 0,
                        "The upload folder holds a private key, " +
                            modFunciones::FromUtf8(name).value_or("in a file with an odd name") +
                            ", which others would get: keep it elsewhere."});
  }
}

}  // namespace

Site::Site(fs::path folder, const Script& script) : root(std::move(folder)) {
  constexpr int Enough = 100;
  std::map<std::string, int> found;
  int asked = 0;
  for (const auto& [line, url] : DownloadsIn(script)) {
    if (line == 0) continue;  // the updater may be kept elsewhere
    const std::string candidate = BaseOf(url, root);
    if (!candidate.empty() && ++found[candidate] > found[base]) base = candidate;
    if (++asked == Enough) break;
  }
}

std::optional<fs::path> Site::FileOf(const std::string& url) const {
  if (base.empty() || !url.starts_with(base)) return std::nullopt;
  return PathBelow(root, url.substr(base.size()));
}

void CheckSite(const Script& script, const Site& site, Findings& findings) {
  if (site.Url().empty()) return;
  CheckPrivateKeys(site.Folder(), findings);
  for (const auto& [line, url] : DownloadsIn(script)) {
    const auto file = line == 0 ? std::nullopt : site.FileOf(url);
    if (!file) continue;
    std::error_code error;
    if (!IsFile(*file)) {
      findings.push_back({Severity::Error, script.numbers[line],
                          "The upload folder has no file for this URL, though it has others."});
    } else if (fs::file_size(*file, error) == 0) {
      findings.push_back(
          {Severity::Warning, script.numbers[line], "The file in the upload folder is empty."});
    }
  }
}

}  // namespace publish
