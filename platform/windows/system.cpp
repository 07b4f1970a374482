#include "platform/system.h"

#include <windows.h>

#include <shellapi.h>

#include <utility>

#include "base/text.h"
#include "platform/windows/libraries.h"
#include "platform/windows/programs.h"
#include "platform/windows/text.h"

namespace platform::system {
namespace {

constexpr std::int32_t Opened = 33;

const std::string& ExecutablePath() {
  static const std::string own = [] {
    std::string path(MAX_PATH, '\0');
    while (true) {
      const DWORD length =
          GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
      if (length < path.size()) return path.substr(0, length);
      path.resize(path.size() * 2);
    }
  }();
  return own;
}

}  // namespace

std::string CommandLineText() {
  // The program's name ends at the first blank outside quotes.
  const char* rest = GetCommandLineA();
  for (bool inQuotes = false; *rest != '\0'; ++rest) {
    if (*rest == '"') inQuotes = !inQuotes;
    if (!inQuotes && (*rest == ' ' || *rest == '\t')) break;
  }
  return rest;
}

std::string ExecutableFolder() {
  const std::string& path = ExecutablePath();
  const auto separator = path.find_last_of('\\');
  if (separator == std::string::npos) return "";
  const bool isRoot = separator > 0 && path[separator - 1] == ':';
  return path.substr(0, isRoot ? separator + 1 : separator);
}

std::string ExecutableBaseName() {
  const std::string& path = ExecutablePath();
  const std::string name = path.substr(path.find_last_of('\\') + 1);
  return name.substr(0, name.find_last_of('.'));
}

void EndTurn::operator()(void* turn) const { CloseHandle(turn); }

Turn TakeTurn() {
  const HANDLE file = CreateFileA(ExecutablePath().c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  Turn turn(file);
  // A byte far behind the end of the file is in nobody's way.
  OVERLAPPED place{};
  place.OffsetHigh = 1;
  const bool isOurs = LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                                 &place) != FALSE;
  return isOurs ? std::move(turn) : nullptr;
}

std::size_t WindowsDirectory(std::string& buffer) {
  return GetWindowsDirectoryA(buffer.data(), static_cast<UINT>(buffer.size()));
}

std::size_t SystemDirectory(std::string& buffer) {
  return GetSystemDirectoryA(buffer.data(), static_cast<UINT>(buffer.size()));
}

std::string DecimalSeparator() {
  static const std::string separator = [] {
    char text[8] = ".";
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, sizeof text);
    return std::string(text);
  }();
  return separator;
}

std::int32_t OpenWithShell(const std::string& verb, const std::string& file,
                           const std::string& parameters, const std::string& folder,
                           int showValue) {
  if (file.size() > MAX_PATH) return SE_ERR_FNF;  // a shell may not be made for more
  const bool isProgram = modFunciones::LowerCase(file).ends_with(".exe");
  if (!windows_layer::LoaderIsFree(isProgram ? windows_layer::LongestOpening
                                             : windows_layer::LongestLoading)) {
    const std::string commandLine = '"' + file + "\" " + parameters;
    const bool isStarted =
        isProgram && windows_layer::StartProgram(commandLine, folder.c_str(), showValue);
    return isStarted ? Opened : SE_ERR_FNF;
  }
  // Loaded here, at the end of a run, for the window to be on the screen the sooner.
  const auto execute = windows_layer::FunctionOf<decltype(ShellExecuteA)>(
      windows_layer::LoadShell(), "ShellExecuteA");
  const HINSTANCE code =
      execute(GetDesktopWindow(), verb.c_str(), file.c_str(),
              windows_layer::NullWhenEmpty(parameters), folder.c_str(), showValue);
  return static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(code));
}

void EndProcess() {
  // Not ExitProcess: that would wait for a component's worker that holds the loader's lock.
  TerminateProcess(GetCurrentProcess(), 0);
  __builtin_unreachable();
}

}  // namespace platform::system
