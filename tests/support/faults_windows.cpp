#include <windows.h>

#include "tests/support/faults.h"

namespace faults {

std::string Hide(const std::string& path) {
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
  return path;
}

std::shared_ptr<void> Lock(const std::string& path) {
  return {CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
          CloseHandle};
}

std::uint32_t CodeOfTerminated(std::uint32_t exitCode) {
  return exitCode;
}

}  // namespace faults
