#include "platform/processes.h"

#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the one that declares siginfo_t
#include <sys/wait.h>
#include <unistd.h>

extern "C" {  // glibc 2.36 does not say so itself
#include <sys/pidfd.h>
}

#include <charconv>
#include <chrono>
#include <filesystem>
#include <thread>
#include <variant>
#include <vector>

#include "base/text.h"
#include "platform/linux/paths.h"
#include "platform/linux/programs.h"

namespace platform::processes {
namespace {

constexpr int LongestTermination = 5000;    // milliseconds
constexpr std::uint32_t StillActive = 259;  // STILL_ACTIVE
constexpr int SignalledCode = 128;          // what a shell adds to the number of the signal
constexpr std::int32_t NewestVersion = 10;
constexpr PrivilegeId AnyPrivilege = 1;

struct ListedProcesses {
  std::vector<Entry> entries;
  std::size_t next = 0;
};

/// A descriptor of the system's.
struct OpenProcess {
  explicit OpenProcess(int opened) : descriptor(opened) {}
  ~OpenProcess() { close(descriptor); }
  OpenProcess(const OpenProcess&) = delete;
  OpenProcess& operator=(const OpenProcess&) = delete;

  int descriptor;
};

/// What the handles of this file point to; a token is nothing.
using SystemObject = std::variant<std::monostate, ListedProcesses, OpenProcess>;

template <typename Object>
Object& As(void* handle) {
  return std::get<Object>(*static_cast<SystemObject*>(handle));
}

int DescriptorOf(const Process& process) { return As<OpenProcess>(process.get()).descriptor; }

bool EndsWithin(const Process& process, int milliseconds) {
  pollfd watched = {DescriptorOf(process), POLLIN, 0};
  return poll(&watched, 1, milliseconds) > 0;
}

}  // namespace

void CloseSystemHandle::operator()(void* handle) const {
  delete static_cast<SystemObject*>(handle);
}

Snapshot TakeSnapshot(std::uint32_t /*kind*/) {
  namespace fs = std::filesystem;
  Snapshot snapshot(new SystemObject(ListedProcesses()));
  auto& entries = As<ListedProcesses>(snapshot.get()).entries;
  std::error_code failure;
  for (fs::directory_iterator entry("/proc", failure), end; !failure && entry != end;
       entry.increment(failure)) {
    const std::string digits = entry->path().filename().string();
    std::uint32_t id = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (parsed.ec != std::errc{}) continue;
    // None for a process of the kernel, one that has ended, and one that is not ours to look into.
    const std::string program = linux_layer::TargetOfLink(entry->path().string() + "/exe");
    if (program.empty()) continue;
    entries.push_back({id, modFunciones::FromAnyUtf8(linux_layer::FileNameOf(program))});
  }
  return snapshot;
}

bool FirstEntry(const Snapshot& snapshot, Entry& entry) {
  As<ListedProcesses>(snapshot.get()).next = 0;
  return NextEntry(snapshot, entry);
}

bool NextEntry(const Snapshot& snapshot, Entry& entry) {
  auto& object = As<ListedProcesses>(snapshot.get());
  if (object.next == object.entries.size()) return false;
  entry = object.entries[object.next++];
  return true;
}

std::uint32_t OwnId() { return static_cast<std::uint32_t>(getpid()); }

std::int32_t SystemVersion() { return NewestVersion; }

Token OpenOwnToken(std::uint32_t /*access*/) { return Token(new SystemObject); }

std::optional<PrivilegeId> LookUpPrivilege(const std::string& /*name*/) { return AnyPrivilege; }

bool AdjustPrivilege(const Token& /*token*/, PrivilegeId /*privilege*/,
                     std::uint32_t /*attributes*/) {
  return true;
}

Process Open(std::uint32_t /*access*/, std::uint32_t id) {
  const int descriptor = pidfd_open(static_cast<pid_t>(id), 0);
  if (descriptor < 0) return nullptr;
  return Process(new SystemObject(std::in_place_type<OpenProcess>, descriptor));
}

bool Terminate(const Process& process, std::uint32_t /*exitCode*/) {
  if (HasEnded(process)) return false;
  const bool terminated = pidfd_send_signal(DescriptorOf(process), SIGKILL, nullptr, 0) == 0;
  if (terminated) EndsWithin(process, LongestTermination);
  return terminated;
}

bool ExitCode(const Process& process, std::uint32_t& exitCode) {
  exitCode = StillActive;
  if (!HasEnded(process)) return true;
  siginfo_t status = {};
  // The status is left in place, for every other object of this process.
  const bool isChild = waitid(P_PIDFD, static_cast<id_t>(DescriptorOf(process)), &status,
                              WEXITED | WNOHANG | WNOWAIT) == 0;
  const int code = status.si_status + (status.si_code == CLD_EXITED ? 0 : SignalledCode);
  exitCode = isChild ? static_cast<std::uint32_t>(code) : 0;
  return true;
}

bool HasEnded(const Process& process) { return EndsWithin(process, 0); }

Process Start(const std::string& commandLine, int /*showValue*/) {
  std::vector<std::string> elements = linux_layer::SplitCommandLine(commandLine);
  if (elements.empty()) return nullptr;
  const std::string program = linux_layer::FindProgram(elements.front());
  if (program.empty()) return nullptr;
  elements.erase(elements.begin());
  const auto child = linux_layer::Spawn(program, elements, "");
  return child ? Open(0, static_cast<std::uint32_t>(*child)) : nullptr;
}

void Sleep(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace platform::processes
