#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace modPrincipal {

/// Downloads the file of every ADD and UPDATE row beside its destination, under the destination's
/// name followed by ".tmp". Returns "" or the failure message to show.
[[nodiscard]] std::string DownloadFiles();

}  // namespace modPrincipal

namespace modFunciones {

/// Free space of a drive such as "C:" in kilobytes of 1,024 bytes; 0 when the system does not tell,
/// and 2,147,483,647 from 2 TiB on.
[[nodiscard]] std::int32_t FreeDiskSpaceKB(std::string_view drive);

}  // namespace modFunciones
