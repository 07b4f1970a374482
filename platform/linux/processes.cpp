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
#include <fstream>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/linux/paths.h"
#include "platform/linux/programs.h"

namespace platform::processes {
namespace {

constexpr int LongestTermination = 5000;        // milliseconds
constexpr std::uint32_t StillActive = 259;      // STILL_ACTIVE
constexpr int SignalledCode = 128;              // what a shell adds to the number of the signal
constexpr std::size_t LongestCommandName = 15;  // of /proc/PID/comm
constexpr std::int32_t NewestVersion = 10;
constexpr PrivilegeId AnyPrivilege = 1;

/// What the handles of this file point to.
struct SystemObject {
  SystemObject() = default;
  virtual ~SystemObject() = default;
  SystemObject(const SystemObject&) = delete;
  SystemObject& operator=(const SystemObject&) = delete;
};

struct SnapshotObject : SystemObject {
  std::vector<Entry> entries;
  std::size_t next = 0;
};

struct ProcessObject : SystemObject {
  explicit ProcessObject(int file) : descriptor(file) {}
  ~ProcessObject() override {
    close(descriptor);
    if (child != 0) linux_layer::Abandon(child);
  }

  int descriptor;
  pid_t child = 0;  // of the object that Start gave out
};

template <typename Object>
Object& As(void* handle) {
  return static_cast<Object&>(*static_cast<SystemObject*>(handle));
}

int DescriptorOf(const Process& process) { return As<ProcessObject>(process.get()).descriptor; }

std::vector<std::string> ArgumentsOf(const std::string& folder) {
  std::ifstream file(folder + "/cmdline", std::ios::binary);
  std::vector<std::string> arguments;
  for (std::string argument; std::getline(file, argument, '\0');) arguments.push_back(argument);
  return arguments;
}

/// A script runs inside its interpreter, behind whose name and option its own stands; the kernel
/// then calls the process by the first 15 characters of the script's name.
std::string ScriptOf(const std::string& folder) {
  std::string name;
  std::getline(std::ifstream(folder + "/comm"), name);
  const auto arguments = ArgumentsOf(folder);
  for (std::size_t i = 1; i < arguments.size() && i <= 2; ++i) {
    std::string script = linux_layer::FileNameOf(arguments[i]);
    if (!name.empty() && script.substr(0, LongestCommandName) == name) return script;
  }
  return "";
}

/// Empty for a process of the kernel, one that has ended, and one that is not ours to look into.
std::string NameOf(const std::string& folder) {
  const std::string executable = linux_layer::TargetOfLink(folder + "/exe");
  if (executable.empty()) return "";
  const std::string script = ScriptOf(folder);
  return script.empty() ? linux_layer::FileNameOf(executable) : script;
}

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
  auto snapshot = std::make_unique<SnapshotObject>();
  std::error_code failure;
  for (fs::directory_iterator entry("/proc", failure), end; !failure && entry != end;
       entry.increment(failure)) {
    const std::string digits = entry->path().filename().string();
    std::uint32_t id = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (parsed.ec != std::errc{}) continue;
    const std::string name = NameOf(entry->path().string());
    if (!name.empty()) snapshot->entries.push_back({id, modFunciones::FromAnyUtf8(name)});
  }
  return Snapshot(static_cast<SystemObject*>(snapshot.release()));
}

bool FirstEntry(const Snapshot& snapshot, Entry& entry) {
  As<SnapshotObject>(snapshot.get()).next = 0;
  return NextEntry(snapshot, entry);
}

bool NextEntry(const Snapshot& snapshot, Entry& entry) {
  auto& object = As<SnapshotObject>(snapshot.get());
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
  return Process(descriptor < 0 ? nullptr
                                : static_cast<SystemObject*>(new ProcessObject(descriptor)));
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
  if (!child) return nullptr;

  Process process = Open(0, static_cast<std::uint32_t>(*child));
  if (process) {
    As<ProcessObject>(process.get()).child = *child;
  } else {
    linux_layer::Abandon(*child);
  }
  return process;
}

void Sleep(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace platform::processes
