#include "install/process_control.h"

#include <optional>
#include <string>

#include "base/text.h"
#include "platform/processes.h"
#include "platform/window.h"

namespace processes = platform::processes;

namespace modKillApp {
namespace {

// Numbers of tlhelp32.h and winnt.h.
constexpr std::uint32_t SnapshotOfProcesses = 2;  // TH32CS_SNAPPROCESS
constexpr std::uint32_t AdjustAndQuery = 0x28;    // TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY
constexpr std::uint32_t PrivilegeOn = 2;          // SE_PRIVILEGE_ENABLED
constexpr std::uint32_t PrivilegeOff = 0;
constexpr std::uint32_t AllProcessAccess = 0x1F0FFF;  // PROCESS_ALL_ACCESS of all NT versions

bool IsNtFamily() { return processes::SystemVersion() >= 0; }

}  // namespace

bool KillApp(std::string_view name) {
  if (name.empty()) return false;
  const std::string ending = modFunciones::LowerCase(name);
  bool matched = false;
  const processes::Snapshot snapshot = processes::TakeSnapshot(SnapshotOfProcesses);
  processes::Entry entry;
  for (bool more = snapshot && processes::FirstEntry(snapshot, entry); more;
       more = processes::NextEntry(snapshot, entry)) {
    if (entry.id == processes::OwnId()) continue;
    if (modFunciones::LowerCase(entry.fileName).ends_with(ending)) {
      matched = true;
      (void)KillProcess(entry.id, 0);  // one that cannot be ended is passed over
    }
  }
  return matched;
}

bool KillProcess(std::uint32_t id, std::uint32_t exitCode) {
  processes::Token token;
  std::optional<processes::PrivilegeId> debugPrivilege;
  if (IsNtFamily()) {
    token = processes::OpenOwnToken(AdjustAndQuery);
    if (!token) return false;
    debugPrivilege = processes::LookUpPrivilege("SeDebugPrivilege");
    if (!debugPrivilege) return false;
    if (!processes::AdjustPrivilege(token, *debugPrivilege, PrivilegeOn)) return false;
  }

  bool terminated = false;
  if (const processes::Process process = processes::Open(AllProcessAccess, id)) {
    terminated = processes::Terminate(process, exitCode);
  }

  if (IsNtFamily()) (void)processes::AdjustPrivilege(token, *debugPrivilege, PrivilegeOff);
  return terminated;
}

}  // namespace modKillApp

namespace modFunciones {
namespace {

constexpr std::uint32_t StillActive = 259;   // STILL_ACTIVE
constexpr std::uint32_t PollInterval = 100;  // milliseconds

}  // namespace

void WaitForProcess(const processes::Process& process) {
  std::uint32_t exitCode = 0;
  bool running = true;
  do {
    // 259 may be the process's own exit code: its handle then tells that it has ended.
    running = process && processes::ExitCode(process, exitCode) && exitCode == StillActive &&
              !processes::HasEnded(process);
    platform::window::ProcessPendingEvents();
    processes::Sleep(PollInterval);
  } while (running);
}

}  // namespace modFunciones
