#include "platform/windows/programs.h"

#include <objbase.h>
#include <shellapi.h>

#include <algorithm>

#include "platform/files.h"
#include "platform/windows/libraries.h"

namespace platform::windows_layer {
namespace {

constexpr DWORD ElevationRequired = 740;  // ERROR_ELEVATION_REQUIRED, newer than XP's headers

struct Command {
  std::string program;  // full path; empty when there is none
  std::string parameters;
};

/// Full path of the program that a name means, with or without its ".exe"; empty when there is
/// none.
std::string FindProgram(const std::string& name) {
  std::string path(MAX_PATH, '\0');
  const DWORD length = SearchPathA(nullptr, name.c_str(), ".exe", MAX_PATH, path.data(), nullptr);
  if (length >= MAX_PATH) return "";  // a shell may not be made for more
  path.resize(length);
  return files::IsFile(path) ? path : "";
}

/// Cuts a command line as CreateProcess does: behind the program's quotes, and without them at the
/// first blank before which there is a program.
Command Cut(const std::string& commandLine) {
  constexpr const char* Blanks = " \t";
  Command command;
  std::size_t end = 0;
  if (commandLine.starts_with('"')) {
    end = std::min(commandLine.find('"', 1), commandLine.size());
    command.program = FindProgram(commandLine.substr(1, end - 1));
    ++end;
  } else {
    while (command.program.empty() && end < commandLine.size()) {
      end = std::min(commandLine.find_first_of(Blanks, end + 1), commandLine.size());
      command.program = FindProgram(commandLine.substr(0, end));
    }
  }
  const auto rest = commandLine.find_first_not_of(Blanks, end);
  if (rest != std::string::npos) command.parameters = commandLine.substr(rest);
  return command;
}

}  // namespace

processes::Process StartThroughShell(const std::string& commandLine, const char* folder,
                                     int showValue) {
  const Command command = Cut(commandLine);
  if (command.program.empty() || !LoaderIsFree(LongestLoading)) return nullptr;
  SHELLEXECUTEINFOA start = {};
  start.cbSize = sizeof start;
  // No box tells of a failure; the system's question is not one, and comes.
  start.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
  start.hwnd = GetActiveWindow();  // without one the question waits in the task bar
  start.lpVerb = "open";
  start.lpFile = command.program.c_str();
  start.lpParameters = command.parameters.c_str();
  start.lpDirectory = folder;
  start.nShow = showValue;
  const auto execute = FunctionOf<decltype(ShellExecuteExA)>(LoadShell(), "ShellExecuteExA");
  return processes::Process(execute(&start) != FALSE ? start.hProcess : nullptr);
}

processes::Process StartProgram(const std::string& commandLine, const char* folder, int showValue) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(showValue);
  PROCESS_INFORMATION started;
  std::string writableLine = commandLine;
  if (CreateProcessA(nullptr, writableLine.data(), nullptr, nullptr, FALSE,
                     CREATE_DEFAULT_ERROR_MODE, nullptr, folder, &startup, &started) == FALSE) {
    const bool needsRights = GetLastError() == ElevationRequired;
    return needsRights ? StartThroughShell(commandLine, folder, showValue) : nullptr;
  }
  CloseHandle(started.hThread);
  return processes::Process(started.hProcess);
}

HMODULE LoadShell() {
  const HMODULE com = LoadSystemLibrary("ole32.dll");
  const HMODULE shell = LoadSystemLibrary("shell32.dll");
  // Shortcuts and documents may be opened through COM.
  FunctionOf<decltype(CoInitializeEx)>(com, "CoInitializeEx")(
      nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  return shell;
}

}  // namespace platform::windows_layer
