#include "platform/private_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace platform::private_file {

bool Create(const std::filesystem::path& path, std::string_view bytes) {
  const int descriptor =
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return false;
  FILE* const file = fdopen(descriptor, "w");
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (std::fclose(file) == 0 && written) return true;
  unlink(path.c_str());
  return false;
}

}  // namespace platform::private_file
