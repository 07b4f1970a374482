// Milliseconds from the start of a program to its visible window, as another process sees it.
//   start_to_window CLASS COMMANDLINE

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/stopwatch.h"

namespace {

constexpr DWORD Patience = 30'000;  // milliseconds

/// Looks at the condition every millisecond; whether it came to hold.
template <typename Condition>
bool WaitUntil(Condition condition) {
  for (const DWORD start = GetTickCount(); !condition(); Sleep(1)) {
    if (GetTickCount() - start > Patience) return false;
  }
  return true;
}

bool ShowsWindow(const char* windowClass, std::string commandLine, PROCESS_INFORMATION& started) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  return CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started) != FALSE &&
         WaitUntil([=] { return IsWindowVisible(FindWindowA(windowClass, nullptr)) != FALSE; });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  GetDC(nullptr);  // so that the desktop is there
  bool shown = false;
  PROCESS_INFORMATION started = {};
  const double time = TimeOf([&] { shown = ShowsWindow(argv[1], argv[2], started); });
  TerminateProcess(started.hProcess, 0);
  WaitForSingleObject(started.hProcess, Patience);
  std::printf("%.2f\n", time);
  return shown ? EXIT_SUCCESS : EXIT_FAILURE;
}
