#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace modFunciones {

/// Cuts an argument text into its arguments, behind ownPath as element 0. Each of them holds at
/// least one character; a quoted blank in front of the first character of an argument goes to the
/// element before it. Blanks and tabs separate unless quoted; inside an argument \" stands for a
/// literal quote.
[[nodiscard]] std::vector<std::string> SplitArguments(std::string_view ownPath,
                                                      std::string_view argumentText);

/// SplitArguments of this process's command line, element 0 being own folder + "\" + own base name.
[[nodiscard]] std::vector<std::string> SplitCommandLine();

}  // namespace modFunciones
