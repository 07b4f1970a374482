#include <unistd.h>

#include "publish/terminal.h"

namespace publish {

bool IsTerminal(Stream stream) {
  return isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

}  // namespace publish
