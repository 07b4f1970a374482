// Milliseconds that a window on the screen stood still at the longest, looked at again and again
// for a while.
//   standstill TITLE SECONDS

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds BetweenLooks{2};

/// The visible one that has the title among a window and those in it; 0 when there is none.
Window FindWindow(Display* display, Window window, std::string_view title) {
  char* name = nullptr;
  const bool has = XFetchName(display, window, &name) != 0 && name == title;
  if (name != nullptr) XFree(name);
  XWindowAttributes attributes = {};
  XGetWindowAttributes(display, window, &attributes);
  if (has && attributes.map_state == IsViewable) return window;

  Window root = 0;
  Window parent = 0;
  Window* children = nullptr;
  unsigned count = 0;
  XQueryTree(display, window, &root, &parent, &children, &count);
  Window found = 0;
  for (unsigned i = 0; i < count && found == 0; ++i) {
    found = FindWindow(display, children[i], title);
  }
  if (children != nullptr) XFree(children);
  return found;
}

/// The window's pixels.
std::string Look(Display* display, Window window) {
  XWindowAttributes size = {};
  XGetWindowAttributes(display, window, &size);
  XImage* const image = XGetImage(display, window, 0, 0, static_cast<unsigned>(size.width),
                                  static_cast<unsigned>(size.height), AllPlanes, ZPixmap);
  if (image == nullptr) return "";
  std::string pixels(image->data, static_cast<std::size_t>(image->bytes_per_line) *
                                      static_cast<std::size_t>(image->height));
  XDestroyImage(image);
  return pixels;
}

Clock::duration LongestStandstill(Display* display, Window window, Clock::duration duration) {
  const auto start = Clock::now();
  auto changed = start;
  Clock::duration longest{};
  std::string former = Look(display, window);
  for (auto now = start; now - start < duration; now = Clock::now()) {
    std::this_thread::sleep_for(BetweenLooks);
    std::string pixels = Look(display, window);
    longest = std::max(longest, Clock::now() - changed);
    if (pixels == former) continue;
    former = std::move(pixels);
    changed = Clock::now();
  }
  return longest;
}

}  // namespace

int main(int argc, char** argv) {
  Display* const display = XOpenDisplay(nullptr);
  if (argc != 3 || display == nullptr) return EXIT_FAILURE;
  const Window window = FindWindow(display, DefaultRootWindow(display), argv[1]);
  if (window == 0) return EXIT_FAILURE;
  const auto longest = LongestStandstill(display, window, std::chrono::seconds(std::stoi(argv[2])));
  std::printf("%.2f\n", std::chrono::duration<double, std::milli>(longest).count());
}
