#pragma once

#include <cstdint>
#include <string>

namespace modFunciones {

/// Opens a file through the shell, in a normally shown window and with C:\ as working folder.
/// Returns the shell's code; a failure shows nothing, and no caller looks at it.
std::int32_t LaunchFile(const std::string& file, const std::string& parameters);

}  // namespace modFunciones
