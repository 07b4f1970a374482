#pragma once

// The process itself and the machine it runs on. Texts are in the program's code page; an empty
// text is the failure value.

#include <cstdint>
#include <memory>
#include <string>

namespace platform::system {

/// Everything that follows the program's own name on its command line. Windows: as written. Linux:
/// put together from the arguments: in quotes what holds blanks or tabs, each literal quote as \",
/// backslashes at the end behind the closing quote; an empty argument leaves nothing.
[[nodiscard]] std::string CommandLineText();

/// Folder of the running executable as it was when the process first asked, without a trailing
/// backslash (a drive root keeps its own).
[[nodiscard]] std::string ExecutableFolder();

/// File name of the running executable without its extension.
[[nodiscard]] std::string ExecutableBaseName();

/// Writes the Windows folder (the system folder) into the buffer and returns the number of
/// characters written, 0 on failure, or more than the buffer's size when it does not fit.
/// Windows: GetWindowsDirectoryA, GetSystemDirectoryA. Linux: \usr\local and \usr\local\lib.
[[nodiscard]] std::size_t WindowsDirectory(std::string& buffer);
[[nodiscard]] std::size_t SystemDirectory(std::string& buffer);

/// Decimal separator of the user's locale, such as "," or ".", as it is when it is first asked for.
[[nodiscard]] std::string DecimalSeparator();

/// Opens a file through the shell, owned by the desktop window; showValue is a SW_ value of
/// ShowWindow. Returns the shell's code, above 32 on success. Windows: an .exe is started directly
/// while a component that was left behind keeps libraries from being loaded. Linux: an executable
/// file is started, in the folder if there is one, and nothing else is opened.
std::int32_t OpenWithShell(const std::string& verb, const std::string& file,
                           const std::string& parameters, const std::string& folder, int showValue);

struct EndTurn {
  void operator()(void* turn) const;
};
/// Held by one process of the executable file at a time.
using Turn = std::unique_ptr<void, EndTurn>;

/// Empty while another process has the turn, and where the executable file cannot be read or
/// locked. It ends with the process at the latest.
[[nodiscard]] Turn TakeTurn();

/// Ends the process at once with exit code 0: nothing else of the program runs, open files are
/// closed, other threads are not waited for.
[[noreturn]] void EndProcess();

}  // namespace platform::system
