// The name of the one file that is there; and a path, or a command line, that may hold macros.

#include <algorithm>
#include <regex>

#include "fuzz/fuzz.h"
#include "install/action_executor.h"
#include "install/path_macros.h"

namespace {

using namespace modFunciones;

const std::regex climb(R"([\\/]\.\.[\\/])");

/// The command line with its longest beginning of whole words that names the file in quotes.
std::string Quoted(const std::string& line) {
  const auto isBlank = [&](std::size_t i) { return line[i] == ' ' || line[i] == '\t'; };
  for (std::size_t end = line.starts_with('"') ? 0 : line.size(); end > 0; --end) {
    if (isBlank(end - 1) || (end < line.size() && !isBlank(end))) continue;
    const std::string program = line.substr(0, end);
    const bool isThere = program == machine.onlyFile || program + ".exe" == machine.onlyFile;
    // Windows would take these for the names of other files; there are no folders.
    const bool isBent = program.ends_with('.') || std::regex_search(program, climb);
    if (isThere && !isBent) return '"' + program + '"' + line.substr(end);
  }
  return line;
}

}  // namespace

void Fuzz(const std::string& firstLine, const std::string& rest) {
  machine.onlyFile = firstLine;
  Require(QuoteProgram(rest) == Quoted(rest));
  CreateFolderPath(rest);
  Require(std::ssize(machine.folders) == std::count(rest.begin(), rest.end(), '\\'));
  for (const auto& folder : machine.folders) {
    Require(folder.ends_with('\\') && rest.starts_with(folder));
  }

  const std::string expanded = ExpandMacros(rest);
  Require(expanded == rest || rest.find('$') != std::string::npos);
  Require(ExpandMacros(expanded) == expanded);
  Require(ExpandMacros(firstLine + '\n' + rest) == ExpandMacros(firstLine) + '\n' + expanded);
}
