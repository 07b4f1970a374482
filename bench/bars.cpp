// Milliseconds that so many total bars take, drawn in the program's window on the screen with a
// look at the events before each, as a download does.
//   bars COUNT

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/stopwatch.h"
#include "platform/window.h"
#include "run/progress_bar.h"
#include "run/progress_window.h"

namespace {

void DrawBars(int count) {
  for (int i = 1; i <= count; ++i) {
    platform::window::ProcessPendingEventsInLoop();
    modFunciones::DrawProgressBar(frmPrincipal::picTotal,
                                  static_cast<float>(i) / static_cast<float>(count));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return EXIT_FAILURE;
  const int count = std::stoi(argv[1]);
  frmPrincipal::Load([] {});
  platform::window::Show();
  std::printf("%.2f\n", TimeOf([count] { DrawBars(count); }));
}
