#pragma once

// A block of a script: the lines that turn one folder into another.

#include <string>
#include <vector>

#include "publish/folder.h"

namespace publish {

using Lines = std::vector<std::string>;

/// What the publisher wants beside the files. Names are those below the folder.
struct Wishes {
  std::string url;   // of the folder that holds the new files, with a "/" at its end
  Lines backups;     // files whose old content is kept as .bak
  Lines kept;        // files that are installed where they are missing, and never replaced
  Lines components;  // libraries that register themselves, or unregister where they go
  Lines programs;    // to be ended, beside those that the update has to do with
  Lines firstLines;  // at the beginning of the block, as they are written
  Lines lastLines;   // at its end
};

/// What a file that is kept is downloaded as, behind its name.
inline constexpr const char* FreshSuffix = ".default";

[[nodiscard]] bool AreAmong(const Lines& names, const std::string& name);

/// The block for installed versions that compare so, for example "=" and "2.7.1", END included.
[[nodiscard]] Lines BlockFor(const std::string& comparator, const std::string& version,
                             const Difference& difference, const Wishes& wishes);

}  // namespace publish
