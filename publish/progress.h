#pragma once

#include <cstddef>
#include <string>

namespace publish {

/// Long work shows a line on standard error, if that is a terminal: what is being done and how many
/// steps of it.
void StartProgress(const std::string& what, std::size_t steps);
void ShowProgress(std::size_t done);
/// Removes the line.
void EndProgress();

}  // namespace publish
