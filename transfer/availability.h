#pragma once

#include <string>

namespace modPrincipal {

/// Appends a row to the ActionTable, with the path macros of its first argument replaced. For an
/// ADD or UPDATE with a URL it asks the server whether the file is there and how large it is: false
/// when it is not available; the row then stays, with size 0.
[[nodiscard]] bool AddAction(const std::string& command, const std::string& arg1,
                             const std::string& arg2, const std::string& arg3);

}  // namespace modPrincipal
