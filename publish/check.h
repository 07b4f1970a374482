#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "publish/check_rules.h"
#include "publish/script_text.h"
#include "publish/trust.h"

namespace publish {

/// What the author knows and the script does not tell.
struct Knowledge {
  std::string newest;   // the newest release of the application; may be empty
  std::string updater;  // the file of the updater that the header offers, its bytes; may be empty
  std::filesystem::path site = {};    // the upload folder; may be empty
  std::optional<Origin> origin = {};  // nothing: of digests and signatures nothing is told
  bool probe = false;                 // ask the servers for the files
};

/// Everything there is to know about a script.
struct Examination {
  std::string verdict;  // the message with which one installed version at least refuses it, or ""
  Findings findings;    // errors first, then by line
};
[[nodiscard]] Examination Check(const Script& script, const Knowledge& knowledge);

}  // namespace publish
