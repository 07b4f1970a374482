#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publish/block.h"

namespace publish {

/// What the publisher asks for; texts in the program's code page.
struct Order {
  std::filesystem::path oldFolder;
  std::filesystem::path newFolder;
  std::filesystem::path site;  // the upload folder, which may hold the script already
  std::string url;             // where the upload folder will be found
  std::string from;
  std::string to;
  std::string name;        // empty: keep the one there is
  std::string updaterUrl;  // empty: see UpdaterHeader
  std::string updaterVersion;
  bool coversOlder = false;  // a block for every other version below the new one, too
  Wishes wishes;             // its url is filled in
};

inline constexpr const char* ScriptName = "update.txt";

/// Writes the files into the site's folder of the new version and the block into its script.
/// Returns the reasons, each in a sentence in UTF-8, for which it was not done; nothing is written
/// then.
[[nodiscard]] std::vector<std::string> Make(const Order& order);

}  // namespace publish
