#pragma once

// Starting programs: what processes.cpp and system.cpp share.

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace platform::linux_layer {

/// Cuts a command line at blanks and tabs outside quotes; \" is a literal quote. Still in the
/// program's code page.
[[nodiscard]] std::vector<std::string> SplitCommandLine(const std::string& commandLine);

/// System path of the executable file that a name means, with or without its ".exe"; empty when
/// there is none. A bare name is looked for in the own folder, the working folder and PATH.
[[nodiscard]] std::string FindProgram(const std::string& name);

/// Starts an executable file; parameters are in the program's code page. An empty folder is the own
/// working folder. What is left of a child that has ended stays until this process ends.
[[nodiscard]] std::optional<pid_t> Spawn(const std::string& systemPath,
                                         const std::vector<std::string>& parameters,
                                         const std::string& systemFolder);

}  // namespace platform::linux_layer
