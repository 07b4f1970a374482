#pragma once

#include <filesystem>
#include <string_view>

namespace platform::private_file {

/// Creates a file that only the user whom the program runs for may read, and writes it. False when
/// something has that name already, which is left as it is, or when it cannot be written whole.
/// Windows: others may read it where the file system knows no rights. Linux: mode 0600.
[[nodiscard]] bool Create(const std::filesystem::path& path, std::string_view bytes);

}  // namespace platform::private_file
