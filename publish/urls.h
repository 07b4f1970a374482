#pragma once

// The names of files and the URLs under which they are published.

#include <string>

namespace publish {

/// The URL of a file below another URL that ends with a "/". name: with backslashes, in the
/// program's code page.
[[nodiscard]] std::string UrlBelow(const std::string& url, const std::string& name);

/// A part of a URL with the characters that its %20 and so on stand for, in UTF-8 then.
[[nodiscard]] std::string Decoded(const std::string& part);

}  // namespace publish
