#pragma once

#include <string>

namespace modFunciones {

/// Version of the running program as major.minor.revision, the numbers of its version record.
[[nodiscard]] std::string OwnVersion();

}  // namespace modFunciones
