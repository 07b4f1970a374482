#pragma once

// A script as the program reads it for an installed version. Nothing of it is carried out.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "publish/script_text.h"

namespace publish {

/// An action line that takes effect.
struct TakenAction {
  std::size_t line = 0;     // index into Script::lines
  std::size_t opening = 0;  // index of the VERSION line of its block
  bool immediate = false;   // carried out while the script is read
  std::int32_t size = 0;    // bytes to download, where the server was asked
  bool missing = false;     // the server does not offer the file, and the script is refused for it
};

struct Reading {
  std::string failure;  // the message that the user would meet, or ""
  std::string name;     // what the window would show
  bool offersUpdater = false;
  std::vector<TakenAction> actions;  // in the order in which they are carried out
};

/// What the program makes of the script. probe: ask the server for every file, with two HEAD
/// requests each, as the program does; otherwise every file counts as available.
[[nodiscard]] Reading ReadFor(const Script& script, const std::string& installed, bool probe);

}  // namespace publish
