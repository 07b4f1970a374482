#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace publish {

/// True for a text that begins with http:// or https://, in any letter case.
[[nodiscard]] bool IsUrl(const std::string& text);

/// The bytes of a file (its path in UTF-8), or of what a URL answers with after a HEAD request that
/// tells status 200, as the program asks. Nothing when it cannot be had.
[[nodiscard]] std::optional<std::string> Fetch(const std::string& fileOrUrl);

/// What became of the attempt, to follow the name in a sentence, where Fetch returned nothing.
[[nodiscard]] std::string WhyUnreadable(const std::string& fileOrUrl);

/// Hands what a URL answers with to take, block by block, as Fetch asks; false when it cannot be
/// had whole.
[[nodiscard]] bool Receive(const std::string& url,
                           const std::function<void(std::string_view)>& take);

/// The byte-order mark of a text in UTF-8.
inline constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";

[[nodiscard]] bool IsUtf8(std::string_view text);

/// A path in UTF-8 as the standard library takes it, and the other way round.
[[nodiscard]] std::filesystem::path PathOf(const std::string& utf8);
[[nodiscard]] std::string Utf8Of(const std::filesystem::path& path);

/// The bytes of a file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path);

/// Writes a file anew, in one piece: it is the old one or the whole new one.
[[nodiscard]] bool WriteFile(const std::filesystem::path& path, const std::string& content);

}  // namespace publish
