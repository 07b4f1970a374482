#pragma once

// What the library for command lines does not tell of mistakes in options, and in the file of them.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace publish {

/// What to say of an error: the command or option that is meant, where there is one that is near.
[[nodiscard]] std::string TextOfError(const CLI::App* tool, const CLI::Error& error);

/// Reads files of options in UTF-8 that have nothing but options of the tool's commands.
[[nodiscard]] std::shared_ptr<CLI::Config> OptionFilesOf(const CLI::App& tool);

}  // namespace publish
