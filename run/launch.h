#pragma once

#include <cstdint>
#include <string_view>

namespace modFunciones {

/// Opens a file through the shell, in a normally shown window and with C:\ as working folder.
/// Returns the shell's code; a failure shows nothing, and no caller looks at it.
std::int32_t LaunchFile(std::string_view file, std::string_view parameters);

}  // namespace modFunciones
