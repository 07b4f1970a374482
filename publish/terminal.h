#pragma once

namespace publish {

enum class Stream { Output, Errors };

/// True when a stream goes to a terminal that understands UTF-8 and the escape sequences of ANSI;
/// it is made to, where it can be.
[[nodiscard]] bool IsTerminal(Stream stream);

}  // namespace publish
