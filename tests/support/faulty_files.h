#pragma once

// The file operations of the layer, counted, and one of them going wrong. They come in place of the
// layer's own, which they call.

#include <string>
#include <vector>

namespace faulty_files {

/// Exit code of a process that died in an operation.
inline constexpr int Died = 7;

struct State {
  std::size_t faultAt = 0;                   // the operation that goes wrong, from 1 on; 0 for none
  bool dies = false;                         // it ends the process, otherwise it fails
  std::vector<std::string> operations = {};  // so far, such as "Delete a.exe": name and file name
  int openFiles = 0;
  std::string openPath = "";  // of the file opened last
};
extern State state;

/// Bytes; a request of this thread for more memory at once finds none.
extern thread_local std::size_t largestAllocation;

}  // namespace faulty_files
