#pragma once

// The ActionTable: what an update consists of once its script has been read. Five columns, one row
// per recorded action in script order. Rows are appended by AddAction and never changed afterwards.

#include <cstdint>
#include <string>
#include <vector>

namespace modPrincipal {

extern std::vector<std::string> ActionCommand;  // command word in upper case
extern std::vector<std::string> ActionArg1;     // first argument, path macros replaced
extern std::vector<std::string> ActionArg2;
extern std::vector<std::string> ActionArg3;
extern std::vector<std::int32_t> ActionSize;  // bytes to download, or 0

/// Empties the table.
void ResetActionTable();

}  // namespace modPrincipal
