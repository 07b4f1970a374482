#include "platform/console.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>

namespace platform::console {
namespace {

std::string ToUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string converted(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, converted.data(), size, nullptr, nullptr);
  converted.pop_back();  // the zero at the end
  return converted;
}

}  // namespace

std::vector<std::string> Arguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> list(
      CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(ToUtf8(list.get()[i]));
  return arguments;
}

bool IsTerminal(Stream stream) {
  constexpr DWORD EscapeSequences = 4;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE console =
      GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == FALSE) return false;
  SetConsoleOutputCP(CP_UTF8);
  return SetConsoleMode(console, mode | EscapeSequences) != FALSE;
}

}  // namespace platform::console
