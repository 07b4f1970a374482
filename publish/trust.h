#pragma once

// What installations that name a key make of a script.

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "publish/check_rules.h"
#include "publish/script_text.h"

namespace publish {

/// Where a script comes from.
struct Origin {
  std::filesystem::path folder;    // with the files that are to be uploaded, or empty
  std::optional<std::string> key;  // that installations name; nothing: they name none
};

/// What stands behind "#key=" for each signature of a text, fitting or not; "" where it names none.
[[nodiscard]] std::vector<std::string> KeysNamedIn(const std::string& text);

/// Of installations that name no key, everything is taken.
struct Trust {
  bool takesScript = true;
  bool checksFiles = false;  // and so downloads them even where all are empty
  std::set<std::string> refusedUrls =
      {};  // of files that are not what the script says, or not known
};

/// Whether installations go on to read the script. key: as in Origin.
[[nodiscard]] bool IsTaken(const Script& script, const std::optional<std::string>& key);

/// Files are those of the origin's folder, where they are there; no server is asked.
[[nodiscard]] Trust TrustIn(const Script& script, const Origin& origin);

/// What is wrong with the digests and signatures, if there are any or a key is named. probe: ask
/// the servers for each file, with or without them.
void CheckSigning(const Script& script, const Origin& origin, bool probe, Findings& findings);

}  // namespace publish
