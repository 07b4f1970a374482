#pragma once

#include <cstdint>
#include <string_view>

#include "platform/processes.h"

namespace modKillApp {

/// Ends every other process whose executable file name ends with the given name, letter case aside.
/// True when at least one matched, whether or not it could be ended. An empty name matches nothing.
[[nodiscard]] bool KillApp(std::string_view name);

/// Ends one process, with the debug privilege on for the duration of the call. True when it was
/// terminated.
[[nodiscard]] bool KillProcess(std::uint32_t id, std::uint32_t exitCode);

}  // namespace modKillApp

namespace modFunciones {

/// Waits until a process has ended, for one poll of 100 milliseconds at least. Yields at every
/// poll. It takes what the start gave: one with more rights cannot be opened by its id.
void WaitForProcess(const platform::processes::Process& process);

}  // namespace modFunciones
