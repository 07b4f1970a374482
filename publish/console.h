#pragma once

// The console that the tool was started from.

#include <cstddef>
#include <string>
#include <vector>

namespace publish {

/// The arguments of the command line, in UTF-8.
[[nodiscard]] std::vector<std::string> Arguments(int argc, char** argv);

enum class Stream { Output, Errors };

/// True when a stream goes to a terminal that understands UTF-8 and the escape sequences of ANSI;
/// it is made to, where it can be.
[[nodiscard]] bool IsTerminal(Stream stream);

/// Long work shows a line on standard error, if that is a terminal: what is being done and how many
/// steps of it.
void StartProgress(const std::string& what, std::size_t steps);
void ShowProgress(std::size_t done);
/// Removes the line.
void EndProgress();

}  // namespace publish
