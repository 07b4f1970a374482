#pragma once

#include <string>
#include <string_view>

namespace modPrincipal {

/// The install phase: carries out the rows of the ActionTable in order and draws its progress.
/// Returns "" or the failure message to show. A failed write ends it at once; a failed deletion is
/// returned after the remaining rows.
[[nodiscard]] std::string RunActions();

/// Carries out one action at once. ADD, UPDATE and unknown words do nothing; the result is always
/// empty.
std::string RunAction(std::string_view command, const std::string& arg1, const std::string& arg2,
                      const std::string& arg3);

}  // namespace modPrincipal

namespace modFunciones {

/// The command line with its program in quotes, where the program is unquoted and a leading part
/// names an existing file, with or without ".exe": the longest such part is the program. Otherwise
/// the command line as it is. So a path with blanks never starts what its first word names. A part
/// that ends in a dot, or climbs with ".." out of a folder that is not there, names no program.
[[nodiscard]] std::string QuoteProgram(const std::string& commandLine);

}  // namespace modFunciones
