#pragma once

// The script of an update site with all its blocks, edited line by line, so that what people wrote
// into it stays.

#include <string>
#include <vector>

#include "publish/block.h"

namespace publish {

/// Puts the header in place of the one there is, if any.
void SetHeader(std::string& script, const std::string& header);

/// Puts a NAME line in place of the first one there is, otherwise below the header.
void SetName(std::string& script, const std::string& name);

/// Puts a block for one version in front of the first one that already takes effect for that
/// version, otherwise at the end. A block with the same VERSION line goes.
void PutBlock(std::string& script, const Lines& block, const std::string& version);

/// Puts a block for all versions below one at the end. Those for all below the same version or an
/// earlier one go: they would come first. Returns the versions of the latter.
[[nodiscard]] std::vector<std::string> PutOlderBlock(std::string& script, const Lines& block);

}  // namespace publish
