#pragma once

// What a test does to files from outside, each in its system's way.

#include <memory>
#include <string>

namespace faults {

/// Makes a file a hidden one and returns its path.
std::string Hide(const std::string& path);

/// Has a file open, as another program would that shares it with nobody, or with everybody.
/// Linux: null, since no program stands in the way of another.
[[nodiscard]] std::shared_ptr<void> Lock(const std::string& path, bool shares = false);

/// What this process holds; the numbers stay as they are while nothing is kept, but for those of
/// graphics objects and memory, which waver. Linux: handles are file descriptors, and there are no
/// graphics objects.
struct Resources {
  long handles = 0;
  long graphicsObjects = 0;
  long kilobytes = 0;  // of memory of its own
};
[[nodiscard]] Resources ResourcesInUse();

/// Whether this is Wine in the place of Windows.
[[nodiscard]] bool OnWine();

/// Makes the certificates that an authority signed good ones for this user's programs, until the
/// result is gone. Linux: those of the environment's SSL_CERT_FILE are so already.
[[nodiscard]] std::shared_ptr<void> TrustAuthority(const std::string& certificateFile);

}  // namespace faults
