#include "publish/progress.h"

#include <iostream>

#include "platform/console.h"

namespace publish {
namespace {

struct Work {
  std::string what;
  std::size_t steps = 0;
  std::size_t done = 0;
};
Work work;

bool IsShown() {
  using namespace platform::console;
  static const bool shown = IsTerminal(Stream::Errors);
  return shown && work.steps > 0;
}

}  // namespace

void StartProgress(const std::string& what, std::size_t steps) { work = {what, steps, 0}; }

void ShowProgress(std::size_t done) {
  if (!IsShown() || done == work.done) return;
  work.done = done;
  std::cerr << '\r' << work.what << ": " << work.done << " of " << work.steps << std::flush;
}

void EndProgress() {
  if (IsShown() && work.done > 0) std::cerr << "\r\033[K" << std::flush;
  work = {};
}

}  // namespace publish
