#pragma once

#include <cstddef>
#include <cstdint>
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
  bool force = false;        // what is published may be replaced
  bool isTrial = false;      // nothing is written
  Lines excluded;            // patterns of files that are none of the application's; see ListFolder
  Wishes wishes;             // its url is filled in
};

inline constexpr const char* ScriptName = "update.txt";

/// What came of an order; sentences are in UTF-8.
struct Made {
  std::vector<std::string> problems;  // why it was not done; nothing is written then
  std::vector<std::string> notes;     // what the publisher should know all the same
  std::size_t changed = 0;            // files, between the two folders
  std::size_t added = 0;
  std::size_t removed = 0;
  std::uintmax_t bytes = 0;  // that an installation of the old version downloads
  std::string largest;       // the largest of them, and its bytes
  std::uintmax_t largestBytes = 0;
  Lines block;         // for the old version, and behind it the one for all the others
  std::string script;  // the whole of it
};

}  // namespace publish
