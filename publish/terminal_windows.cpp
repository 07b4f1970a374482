#include <windows.h>

#include "publish/terminal.h"

namespace publish {

bool IsTerminal(Stream stream) {
  constexpr DWORD EscapeSequences = 4;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE console =
      GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == FALSE) return false;
  SetConsoleOutputCP(CP_UTF8);
  return SetConsoleMode(console, mode | EscapeSequences) != FALSE;
}

}  // namespace publish
