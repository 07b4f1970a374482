#pragma once

// Starting programs: what processes.cpp and system.cpp share.

#include <windows.h>

#include <string>

#include "platform/processes.h"

namespace platform::windows_layer {

/// Starts a program with its parameters, without the shell and with nothing but what is loaded
/// already, unless it needs more rights. A null folder is the own working folder.
[[nodiscard]] processes::Process StartProgram(const std::string& commandLine, const char* folder,
                                              int showValue);

/// Starts the same program through the shell, so that the system asks the user for the rights that
/// it needs. Empty as well when the user refuses, and while no library can be loaded.
[[nodiscard]] processes::Process StartThroughShell(const std::string& commandLine,
                                                   const char* folder, int showValue);

/// Prepares the thread for the shell and loads it.
[[nodiscard]] HMODULE LoadShell();

}  // namespace platform::windows_layer
