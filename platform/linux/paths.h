#pragma once

// The program writes paths as scripts do: "\" between the names, a drive such as C: in front. On
// this system a drive means nothing and is dropped, and so C:\a\b is /a/b.

#include <string>
#include <string_view>

namespace platform::linux_layer {

[[nodiscard]] std::string ToSystemPath(std::string_view path);
[[nodiscard]] std::string ToProgramPath(std::string_view systemPath);

/// Path of the file that a link of /proc names, whether or not it is still there; empty where the
/// link cannot be read.
[[nodiscard]] std::string TargetOfLink(const std::string& systemPath);

/// What follows the last separator of a system path.
[[nodiscard]] std::string FileNameOf(const std::string& systemPath);

}  // namespace platform::linux_layer
