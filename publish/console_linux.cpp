#include <unistd.h>

#include "publish/console.h"

namespace publish {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

bool IsTerminal(Stream stream) {
  return isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

}  // namespace publish
