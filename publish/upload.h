#pragma once

// The upload folder: the script, what it lets users download, and the file of each URL.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// A line that names a file to download; the header names the newer updater.
struct Download {
  std::size_t line;        // index into Script::lines
  const std::string& url;  // of the script
};
/// The first ones, no more than most.
[[nodiscard]] std::vector<Download> DownloadsIn(const Script& script, std::size_t most = SIZE_MAX);

/// The file that the end of a URL names in a folder, which may lack it; empty when it names none
/// that lies below.
[[nodiscard]] std::filesystem::path FileNamed(const std::filesystem::path& folder,
                                              const std::string& end);

/// Where the longest end of a URL begins that names a file of the folder; npos when none does.
/// folder: may be empty, and has no files then.
[[nodiscard]] std::size_t EndAtHand(const std::filesystem::path& folder, const std::string& url);

/// The file of that end; empty when there is none.
[[nodiscard]] std::filesystem::path FileAtHand(const std::filesystem::path& folder,
                                               const std::string& url);

/// SHA-256 as 64 digits of a file, and of what a URL answers with as Fetch asks; nothing when it
/// cannot be had.
[[nodiscard]] std::optional<std::string> DigestOfFile(const std::filesystem::path& path);
[[nodiscard]] std::optional<std::string> DigestOfUrl(const std::string& url);

}  // namespace publish
