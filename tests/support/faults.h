#pragma once

// What a test does to files from outside, each in its system's way.

#include <memory>
#include <string>

namespace faults {

/// Makes a file a hidden one and returns its path.
std::string Hide(const std::string& path);

/// Keeps a file open, as another program would, so that it can be neither deleted nor replaced.
[[nodiscard]] std::shared_ptr<void> Lock(const std::string& path);

}  // namespace faults
