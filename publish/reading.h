#pragma once

// A script as the program reads it, for one installed version or for many in one go. Nothing of it
// is carried out.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "publish/audience.h"
#include "publish/script_text.h"

namespace publish {

/// The lines from a VERSION line to the next.
struct Block {
  std::size_t opening;      // index of the VERSION line
  std::size_t firstAction;  // index into the actions; they end where those of the next block begin
  Audience audience;        // those for whom it takes effect
  std::optional<std::string> lastName = std::nullopt;  // where it ends their reading: see Reading
};

/// What becomes of an action.
enum class Fate {
  Done,
  Missing,     // the server does not offer the file, and the script is refused for it
  Failed,      // it ends the update, or the message of the final screen is its own
  NotGenuine,  // its file is not taken, which ends the update
  NotStarted,  // a program, for want of a word that says whether to wait
};

/// An action line that takes effect for somebody.
struct TakenAction {
  std::size_t line;   // index into Script::lines
  std::size_t block;  // index into the blocks
  const modPrincipal::Command* command;
  bool immediate;         // carried out while the script is read
  std::int32_t size = 0;  // bytes to download, where the server was asked
  Fate fate = Fate::Done;
  std::optional<std::uintmax_t> published = std::nullopt;  // bytes in the upload folder, if others
};

struct Reading {
  std::string failure;  // the message that somebody would meet, or ""
  std::string name;     // what the window would show
  bool offersUpdater = false;
  std::vector<Block> blocks;
  std::vector<TakenAction> actions;  // in script order
};

/// versions: numbers of the installed versions, in rising order. Every file counts as available.
[[nodiscard]] Reading Read(const Script& script, const std::vector<std::int32_t>& versions);

/// The blocks that take effect for one version, in script order: indices.
using BlocksMet = std::vector<std::size_t>;

/// For each of so many versions that a script was read for.
[[nodiscard]] std::vector<BlocksMet> BlocksMetByEach(const Reading& all, std::size_t versions);

/// What a version that meets these blocks has of a reading for many; its own blocks are left out.
[[nodiscard]] Reading Alone(const Reading& all, const BlocksMet& blocks);

}  // namespace publish
