#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "publish/check_rules.h"
#include "publish/script_text.h"

namespace publish {

/// An upload folder, which is found where the URLs of a script lead.
class Site {
 public:
  /// Finds out by files that the script names and the folder holds.
  Site(std::filesystem::path folder, const Script& script);

  /// The file of a URL, which may be missing, and an empty path where no file can have its name;
  /// nothing for a URL that leads elsewhere.
  [[nodiscard]] std::optional<std::filesystem::path> FileOf(const std::string& url) const;

  [[nodiscard]] const std::filesystem::path& Folder() const { return root; }

  /// Where the folder is found, with a "/" at its end; empty where the script does not tell.
  [[nodiscard]] const std::string& Url() const { return base; }

 private:
  std::filesystem::path root;
  std::string base;  // of its URLs; empty: none was found
};

/// Files that the script names and its upload folder lacks, or holds without content; and private
/// keys in the folder.
void CheckSite(const Script& script, const Site& site, Findings& findings);

}  // namespace publish
