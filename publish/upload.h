#pragma once

// The upload folder: the script, what it lets users download, and the file of each URL.

#include <cstddef>
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
[[nodiscard]] std::vector<Download> DownloadsIn(const Script& script);

/// The file of a URL in the folder of the script: the longest end of the URL that is one; empty
/// when none is. folder: may be empty, and has no files then.
[[nodiscard]] std::filesystem::path FileAtHand(const std::filesystem::path& folder,
                                               const std::string& url);

/// SHA-256 as 64 digits of a file, and of what a URL answers with as Fetch asks; nothing when it
/// cannot be had.
[[nodiscard]] std::optional<std::string> DigestOfFile(const std::filesystem::path& path);
[[nodiscard]] std::optional<std::string> DigestOfUrl(const std::string& url);

}  // namespace publish
