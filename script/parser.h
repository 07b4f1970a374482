#pragma once

// The script as the program reads it: into the values below and the ActionTable.

#include <cstdint>
#include <string>
#include <vector>

#include "script/reader.h"

namespace modPrincipal {

/// The significant lines of the script, in order, each cut into its fields; element 0 is the
/// header. Written by CheckForUpdate, from CutScript.
extern std::vector<Fields> ScriptLines;

// Written by ParseUpdateScript.
extern std::int32_t NewUpdaterVersion;  // version number of the updater that the header offers
extern std::string NewUpdaterUrl;
extern std::string AppDisplayName;  // from the last NAME line

/// Sets these values back to nothing.
void ResetScript();

/// Reads the header and the commands: fills the three values and the ActionTable, and carries out
/// immediate actions. Removes the immediate marker from field 0 of each line it reaches. Returns ""
/// or the failure message to show; what was done before the failing line stays.
[[nodiscard]] std::string ParseUpdateScript(std::vector<Fields>& lines);

}  // namespace modPrincipal
