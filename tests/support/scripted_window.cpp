#include "tests/support/scripted_window.h"

namespace scripted_window {

State state;

void Reset() { state = {}; }

}  // namespace scripted_window

namespace platform::window {

using scripted_window::state;

void Create(const Layout& /*layout*/, const Handlers& /*handlers*/) {}
void Show() {}
void SetWindowCaption(std::string_view /*caption*/) {}
void SetWindowIcon(const std::string& /*path*/) {}
void SetWindowHeight(int /*height*/) {}
void SetText(int control, std::string_view value) {
  state.text[control] = value;
  state.history.push_back(std::to_string(control) + ":" + std::string(value));
}
std::string Text(int control) { return state.text[control]; }
void SetVisible(int /*control*/, bool /*visible*/) {}
void SetEnabled(int /*control*/, bool /*enabled*/) {}
bool IsEnabled(int /*control*/) { return true; }
void SetTop(int /*control*/, int /*top*/) {}
double TwipsPerPixelX() { return state.twipsPerPixel; }
double TwipsPerPixelY() { return state.twipsPerPixel; }
PictureBox DescribePictureBox(int /*control*/) { return {state.flatLook, 4530, 255, 0}; }
void ErasePictureBox(int control) { state.drawn[control].clear(); }
void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t /*colour*/) {
  state.drawn[control].push_back({left, top, right, bottom});
}
void RefreshPictureBox(int control) { ++state.refreshes[control]; }
void SetMousePointer(MousePointer pointer) {
  state.history.push_back(pointer == MousePointer::Hourglass ? "hourglass" : "arrow");
}
int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title) {
  state.messageBoxes.push_back(std::to_string(style) + "|" + std::string(title) + "|" +
                               std::string(text));
  return 1;
}
void ProcessPendingEvents() { state.onYield(); }
void ProcessPendingEventsInLoop() { state.onYield(); }
void RunEventLoop() { std::abort(); }

}  // namespace platform::window
