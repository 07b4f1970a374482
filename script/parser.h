#pragma once

// The update script: plain text whose significant lines are cut into fields at "|".
//
//   1.4.2|http://updates.invalid/updater/Updater.exe      version and URL of the current updater
//   #A comment                                            dropped, as are blank lines
//   NAME|Sample|Ledger                                    the application's display name
//   VERSION|<|3.0.0                                       the lines below hold for versions before
//   !KILL|ledger.exe                                      carried out while the script is read
//   UPDATE|$AppPath\ledger.exe|http://updates.invalid/ledger/3.0.0/ledger.exe
//   MSG|Ledger has been brought up to date.|INFORMATION
//   END                                                   reading ends where the block applied

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace modPrincipal {

/// The significant lines of the script, in order, each cut into its fields; element 0 is the
/// header. Written by CheckForUpdate, from CutScript.
extern std::vector<std::vector<std::string>> ScriptLines;

// Written by ParseUpdateScript.
extern std::int32_t NewUpdaterVersion;  // version number of the updater that the header offers
extern std::string NewUpdaterUrl;
extern std::string AppDisplayName;  // from the last NAME line

/// Sets these values back to nothing.
void ResetScript();

/// Cuts the text of a script into its significant lines and their fields.
[[nodiscard]] std::vector<std::vector<std::string>> CutScript(std::string_view script);

/// Reads the header and the commands: fills the three values and the ActionTable, and carries out
/// immediate actions. Removes the immediate marker from field 0 of each line it reaches. Returns ""
/// or the failure message to show; what was done before the failing line stays.
[[nodiscard]] std::string ParseUpdateScript(std::vector<std::vector<std::string>>& lines);

}  // namespace modPrincipal
