#pragma once

// The frame of the fuzz targets. Each runs the core over doubles of the layer: nothing is started,
// slept for, deleted or sent.

#include <cstdlib>
#include <set>
#include <string>

/// Defined by each target: hands an input, cut behind its first line, to the core and requires what
/// has to hold for any.
void Fuzz(const std::string& firstLine, const std::string& rest);

/// Makes a finding of the input when the condition does not hold. No two calls become one, so that
/// the trace tells which it was.
inline void Require(bool condition) {
  if (!condition) [[clang::nomerge]]
    std::abort();
}

/// What the doubles answer with, and what was created; empty again for each input.
struct Machine {
  std::string commandLine;
  std::string onlyFile;
  std::set<std::string> folders;
  std::string signedMessage;  // the last one whose signature was looked at
};
extern Machine machine;
