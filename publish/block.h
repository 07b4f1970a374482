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
  Lines components;  // libraries that register themselves, or unregister where they go
  Lines lastLines;   // at the end of the block, as they are written
};

/// The block for installed versions that compare so, for example "=" and "2.7.1", END included.
[[nodiscard]] Lines BlockFor(const std::string& comparator, const std::string& version,
                             const Difference& difference, const Wishes& wishes);

/// The URL of a file below another URL that ends with a "/".
[[nodiscard]] std::string UrlBelow(const std::string& url, const std::string& name);

}  // namespace publish
