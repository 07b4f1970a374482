#pragma once

#include <string>
#include <string_view>

namespace modFunciones {

/// The Windows folder and the system folder, without a trailing backslash; empty on failure.
[[nodiscard]] std::string GetWindowsDir();
[[nodiscard]] std::string GetSystemDir();

/// Replaces, in this order and everywhere, "$WinPath" by the Windows folder, "$WinSysPath" by the
/// system folder and "$AppPath" by the folder of the running executable. Case-sensitive.
[[nodiscard]] std::string ExpandMacros(std::string_view value);

/// Creates the missing folders of a path, outermost first; what follows the last backslash is not
/// created. A folder that cannot be created shows in what is then written into it.
void CreateFolderPath(const std::string& path);

}  // namespace modFunciones
