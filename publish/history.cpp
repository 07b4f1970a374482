#include "publish/history.h"

#include <algorithm>
#include <optional>

#include "base/arrays.h"
#include "base/replace.h"
#include "publish/reading.h"
#include "script/version.h"

namespace publish {
namespace {

using modPrincipal::Verb;

Lines LinesOf(const std::string& script) {
  Lines lines = modFunciones::Split(modFunciones::ReplaceAll(script, "\r", ""), '\n');
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

std::string TextOf(const Lines& lines) {
  return lines.empty() ? "" : modFunciones::Join(lines, "\n") + "\n";
}

/// Index into the lines of the text.
std::size_t IndexOf(const Script& script, std::size_t line) {
  return static_cast<std::size_t>(script.numbers[line] - 1);
}

/// Puts lines in place of those from first up to end, which may be none.
void Replace(std::string& script, std::size_t first, std::size_t end, const Lines& added) {
  Lines lines = LinesOf(script);
  const auto at = [&](std::size_t line) {
    return lines.begin() + static_cast<std::ptrdiff_t>(std::min(line, lines.size()));
  };
  const auto behind = lines.erase(at(first), at(end));
  lines.insert(behind, added.begin(), added.end());
  script = TextOf(lines);
}

/// The block from a VERSION line up to its last line; what stands between it and the next one, such
/// as a comment upon that, stays.
void EraseBlock(std::string& script, const Script& cut, std::size_t opening) {
  std::size_t next = opening + 1;
  while (next < cut.lines.size() && !cut.Is(next, Verb::Version)) ++next;
  Replace(script, IndexOf(cut, opening), IndexOf(cut, next - 1) + 1, {});
}

void EraseBlocksLike(std::string& script, const std::string& versionLine) {
  const Fields wanted = modFunciones::Split(versionLine, '|');
  const Script cut = CutWithNumbers(script);
  for (std::size_t i = cut.lines.size(); i-- > 1;) {
    if (cut.lines[i] == wanted) EraseBlock(script, cut, i);
  }
}

/// Where the first block begins that takes effect for the version, comments upon it included.
std::optional<std::size_t> BlockInTheWay(const Script& script, const std::string& version) {
  const Reading reading = Read(script, {modPrincipal::VersionToNumber(version)});
  if (reading.actions.empty()) return std::nullopt;
  return IndexOf(script, reading.blocks[reading.actions.front().block].opening - 1) + 1;
}

}  // namespace

void SetHeader(std::string& script, const std::string& header) {
  const Script cut = CutWithNumbers(script);
  const bool isThere = !cut.lines.empty();
  const std::size_t at = isThere ? IndexOf(cut, 0) : 0;
  Replace(script, at, isThere ? at + 1 : at, {header});
}

void SetName(std::string& script, const std::string& name) {
  const Script cut = CutWithNumbers(script);
  std::size_t line = 1;
  while (line < cut.lines.size() && !cut.Is(line, Verb::Name)) ++line;
  const bool isThere = line < cut.lines.size();
  const std::size_t at = isThere ? IndexOf(cut, line) : IndexOf(cut, 0) + 1;
  Replace(script, at, isThere ? at + 1 : at, {"NAME|" + name});
}

void PutBlock(std::string& script, const Lines& block, const std::string& version) {
  EraseBlocksLike(script, block.front());
  const auto inTheWay = BlockInTheWay(CutWithNumbers(script), version);
  const std::size_t at = inTheWay.value_or(std::string::npos);
  Replace(script, at, at, block);
}

std::vector<std::string> PutOlderBlock(std::string& script, const Lines& block) {
  const Fields opening = modFunciones::Split(block.front(), '|');
  const Script cut = CutWithNumbers(script);
  std::vector<std::string> replaced;
  for (std::size_t i = cut.lines.size(); i-- > 1;) {
    const Fields& line = cut.lines[i];
    if (!cut.Is(i, Verb::Version) || FieldAt(line, 1) != opening[1]) continue;
    const std::string& version = FieldAt(line, 2);
    if (modPrincipal::VersionToNumber(version) > modPrincipal::VersionToNumber(opening[2]))
      continue;
    EraseBlock(script, cut, i);
    if (version != opening[2]) replaced.push_back(version);
  }
  Replace(script, std::string::npos, std::string::npos, block);
  return replaced;
}

}  // namespace publish
