#pragma once

// The console that a program without a window was started from.

#include <string>
#include <vector>

namespace platform::console {

/// The arguments of the command line, in UTF-8.
[[nodiscard]] std::vector<std::string> Arguments(int argc, char** argv);

enum class Stream { Output, Errors };

/// True when a stream goes to a terminal that understands UTF-8 and the escape sequences of ANSI;
/// it is made to, where it can be.
[[nodiscard]] bool IsTerminal(Stream stream);

}  // namespace platform::console
