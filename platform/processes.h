#pragma once

// Other processes, and waiting. Ids, access rights, attributes and exit codes are the 32-bit
// numbers of the Windows calls of the same names; an empty object or false is failure. Each object
// is closed by its owner's end.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace platform::processes {

struct CloseSystemHandle {
  void operator()(void* handle) const;
};
using Snapshot = std::unique_ptr<void, CloseSystemHandle>;
using Process = std::unique_ptr<void, CloseSystemHandle>;
using Token = std::unique_ptr<void, CloseSystemHandle>;

/// One entry of a snapshot: the process id and the file name of its executable. Linux: of a script,
/// its interpreter; a process that the user may not look into is left out.
struct Entry {
  std::uint32_t id = 0;
  std::string fileName;
};

/// kind: 2 is TH32CS_SNAPPROCESS, all processes.
[[nodiscard]] Snapshot TakeSnapshot(std::uint32_t kind);
[[nodiscard]] bool FirstEntry(const Snapshot& snapshot, Entry& entry);
[[nodiscard]] bool NextEntry(const Snapshot& snapshot, Entry& entry);

/// Id of this process.
[[nodiscard]] std::uint32_t OwnId();

/// GetVersion as a signed number: negative on systems that are not of the NT family. Linux: 10.
[[nodiscard]] std::int32_t SystemVersion();

/// Linux: no privilege needs to be asked for; these three succeed and do nothing.
[[nodiscard]] Token OpenOwnToken(std::uint32_t access);

/// Locally unique id of a privilege on this system.
using PrivilegeId = std::uint64_t;
[[nodiscard]] std::optional<PrivilegeId> LookUpPrivilege(const std::string& name);

/// attributes: 2 (SE_PRIVILEGE_ENABLED) or 0.
[[nodiscard]] bool AdjustPrivilege(const Token& token, PrivilegeId privilege,
                                   std::uint32_t attributes);

[[nodiscard]] Process Open(std::uint32_t access, std::uint32_t id);

/// Ends a process and returns once it is gone and has let go of its files, after 5 seconds at the
/// most; so too when it was ending already. False when it was not this call that ended it.
/// Linux: SIGKILL, so that the exit code is not obeyed.
[[nodiscard]] bool Terminate(const Process& process, std::uint32_t exitCode);

/// exitCode: 259 (STILL_ACTIVE) while the process runs. Linux: afterwards 0 to 255, or 128 and the
/// number of the signal; 0 of a process that this one did not start.
[[nodiscard]] bool ExitCode(const Process& process, std::uint32_t& exitCode);

/// True when the process has ended, whatever its exit code; asks for the right 0x100000
/// (SYNCHRONIZE).
[[nodiscard]] bool HasEnded(const Process& process);

/// Starts a program with its parameters; showValue is a SW_ value of ShowWindow.
/// Windows: one that needs more rights is started through the shell, and the system asks the user,
/// whose refusal is a failure.
/// Linux: showValue is not obeyed; a bare name is looked for in the own folder, the working folder
/// and PATH; "\" stays as it is in parameters.
[[nodiscard]] Process Start(const std::string& commandLine, int showValue);

/// Blocks the thread.
void Sleep(std::uint32_t milliseconds);

}  // namespace platform::processes
