#include "platform/processes.h"

#include <windows.h>

#include <tlhelp32.h>

#include "platform/windows/programs.h"

namespace platform::processes {
namespace {

constexpr DWORD LongestTermination = 5000;  // milliseconds

static_assert(sizeof(PROCESSENTRY32) == 296, "the ANSI form of the snapshot record");

using ReadEntry = BOOL WINAPI(HANDLE, PROCESSENTRY32*);

bool TakeEntry(ReadEntry* read, const Snapshot& snapshot, Entry& entry) {
  PROCESSENTRY32 record = {};
  record.dwSize = sizeof record;
  if (read(snapshot.get(), &record) == FALSE) return false;
  entry.id = record.th32ProcessID;
  entry.fileName = record.szExeFile;
  return true;
}

}  // namespace

void CloseSystemHandle::operator()(void* handle) const { CloseHandle(handle); }

Snapshot TakeSnapshot(std::uint32_t kind) {
  const HANDLE snapshot = CreateToolhelp32Snapshot(kind, 0);
  return Snapshot(snapshot == INVALID_HANDLE_VALUE ? nullptr : snapshot);
}

bool FirstEntry(const Snapshot& snapshot, Entry& entry) {
  return TakeEntry(Process32First, snapshot, entry);
}

bool NextEntry(const Snapshot& snapshot, Entry& entry) {
  return TakeEntry(Process32Next, snapshot, entry);
}

std::uint32_t OwnId() { return GetCurrentProcessId(); }

std::int32_t SystemVersion() { return static_cast<std::int32_t>(GetVersion()); }

Token OpenOwnToken(std::uint32_t access) {
  HANDLE token = nullptr;
  return Token(OpenProcessToken(GetCurrentProcess(), access, &token) != FALSE ? token : nullptr);
}

std::optional<PrivilegeId> LookUpPrivilege(const std::string& name) {
  LUID id;
  if (LookupPrivilegeValueA("", name.c_str(), &id) == FALSE) return std::nullopt;
  return static_cast<PrivilegeId>(id.HighPart) << 32U | id.LowPart;
}

bool AdjustPrivilege(const Token& token, PrivilegeId privilege, std::uint32_t attributes) {
  TOKEN_PRIVILEGES record = {};
  record.PrivilegeCount = 1;
  record.Privileges[0].Luid = {static_cast<DWORD>(privilege), static_cast<LONG>(privilege >> 32U)};
  record.Privileges[0].Attributes = attributes;
  return AdjustTokenPrivileges(token.get(), FALSE, &record, 0, nullptr, nullptr) != FALSE;
}

Process Open(std::uint32_t access, std::uint32_t id) {
  return Process(OpenProcess(access, FALSE, id));
}

bool Terminate(const Process& process, std::uint32_t exitCode) {
  const bool terminated = TerminateProcess(process.get(), exitCode) != FALSE;
  // Access is denied as well where the process is ending already: it still holds its files then.
  if (terminated || GetLastError() == ERROR_ACCESS_DENIED) {
    WaitForSingleObject(process.get(), LongestTermination);
  }
  return terminated;
}

bool ExitCode(const Process& process, std::uint32_t& exitCode) {
  DWORD code = 0;
  if (GetExitCodeProcess(process.get(), &code) == FALSE) return false;
  exitCode = code;
  return true;
}

bool HasEnded(const Process& process) {
  return WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0;
}

Process Start(const std::string& commandLine, int showValue) {
  return windows_layer::StartProgram(commandLine, nullptr, showValue);
}

void Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

}  // namespace platform::processes
