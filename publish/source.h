#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace publish {

/// True for a text that begins with http:// or https://, in any letter case.
[[nodiscard]] bool IsUrl(const std::string& text);

/// The bytes of a file (its path in UTF-8), or of what a URL answers with after a HEAD request that
/// tells status 200, as the program asks. Nothing when it cannot be had.
[[nodiscard]] std::optional<std::string> Fetch(const std::string& fileOrUrl);

/// The bytes of a file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path);

}  // namespace publish
