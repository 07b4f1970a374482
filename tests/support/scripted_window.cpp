#include "tests/support/scripted_window.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/replace.h"
#include "base/text.h"

namespace scripted_window {
namespace {

constexpr std::size_t MostEvents = 1'000'000;  // of a run that does not go round in circles
constexpr const char* Names[] = {
    "picIco",  "lblMensaje", "lblNombreAplicacion", "lblFile",  "lblFileProgreso",
    "picFile", "lblTotal",   "lblTotalProgreso",    "picTotal", "btCancelar"};

void TellOf(int control, const std::string& what) {
  Tell(std::string(Names[control]) + ' ' + what);
}

}  // namespace

State state;

void Reset() { state = {}; }

void Tell(const std::string& event) {
  state.history.push_back(event);
  if (state.history.size() > MostEvents) std::abort();
}

std::string Transcript(const std::string& from) {
  std::string all = "\n";
  std::string line;
  auto next = std::find(state.history.begin(), state.history.end(), from);
  if (from.empty()) next = state.history.begin();
  while (next != state.history.end()) {
    std::string event = modFunciones::ReplaceAll(modFunciones::ToUtf8(*next), "C:\\Kt\\", "@");
    const auto same = next;
    while (next != state.history.end() && *next == *same) ++next;
    if (next - same > 1) event += " x" + std::to_string(next - same);
    if (!line.empty() && line.size() + event.size() > 98) all += std::exchange(line, "") + '\n';
    line += (line.empty() ? "" : "; ") + event;
  }
  return all + line + '\n';
}

}  // namespace scripted_window

namespace platform::window {

using namespace scripted_window;

void Create(const Layout& layout, const Handlers& handlers) {
  state.handlers = handlers;
  Tell("window " + std::string(layout.caption) + ' ' + std::to_string(layout.clientWidth) + 'x' +
       std::to_string(layout.clientHeight));
}
void Show() {
  Tell("show");
  if (!std::exchange(state.shown, true) && state.handlers.resized) state.handlers.resized();
}
void SetWindowCaption(std::string_view caption) { Tell("caption " + std::string(caption)); }
void SetWindowIcon(const std::string& path) { Tell("icon " + path); }
void SetWindowHeight(int height) { Tell("height " + std::to_string(height)); }
void SetText(int control, std::string_view value) {
  state.text[control] = value;
  TellOf(control, '"' + std::string(value) + '"');
}
std::string Text(int control) { return state.text[control]; }
void SetVisible(int control, bool visible) { TellOf(control, visible ? "visible" : "hidden"); }
void SetEnabled(int control, bool enabled) {
  state.enabled = enabled;
  TellOf(control, enabled ? "on" : "off");
}
bool IsEnabled(int /*control*/) { return state.enabled; }
void SetTop(int control, int top) { TellOf(control, "at " + std::to_string(top)); }
double TwipsPerPixelX() { return state.twipsPerPixel; }
double TwipsPerPixelY() { return state.twipsPerPixel; }
PictureBox DescribePictureBox(int /*control*/) { return {state.flatLook, 4530, 255, 0}; }
void ErasePictureBox(int control) { state.drawn[control].clear(); }
void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t /*colour*/) {
  state.drawn[control].push_back({left, top, right, bottom});
}
void RefreshPictureBox(int control) {
  TellOf(control, std::to_string(state.drawn[control].size()));
}
void SetMousePointer(MousePointer pointer) {
  Tell(pointer == MousePointer::Hourglass ? "hourglass" : "arrow");
}
int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title) {
  Tell("box " + std::to_string(style) + '|' + std::string(title) + '|' + std::string(text));
  return state.answer;
}
void ProcessPendingEvents() {
  Tell("yield");
  state.onYield();
}
void ProcessPendingEventsInLoop() {
  Tell("yield in loop");
  state.onYield();
}
void RunEventLoop() { std::abort(); }

}  // namespace platform::window
