#include "platform/window.h"

#include <FL/Fl.H>
#include <FL/Fl_Double_Window.H>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <vector>

#include "base/text.h"
#include "platform/linux/icon_file.h"
#include "platform/linux/message_box.h"
#include "platform/linux/paths.h"
#include "platform/linux/widgets.h"
#include "platform/pace.h"

namespace platform::window {
namespace {

using linux_layer::IconWidget;
using linux_layer::LabelWidget;
using linux_layer::PictureWidget;
using linux_layer::Scale;
using modFunciones::ToUtf8;

constexpr double TwipsPerInch = 1440.0;
constexpr double UnscaledDotsPerInch = 96;
constexpr int UnscaledIconSize = 32;
constexpr double HeightOfDecoration = 390;  // twips: title bar and borders of the Windows window
constexpr double ShowingPoll = 0.05;        // seconds
constexpr int MostShowingPolls = 20;
constexpr const char* WindowClass = "Kestrane";

// Written by Create, and where not by the procedures that change the thing in question.
Handlers handlers{};
Scale scale;
bool resizeEventsOn = false;  // set by the first Show
bool displayMayWait = true;   // not while the button is disabled: what follows may block
Pace pace;

/// Milliseconds, from some moment on.
std::uint32_t TickCount() {
  using namespace std::chrono;
  const auto now = steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(duration_cast<milliseconds>(now).count());
}

std::uint32_t ValueOf(Fl_Color colour) {
  uchar red = 0;
  uchar green = 0;
  uchar blue = 0;
  Fl::get_color(colour, red, green, blue);
  return static_cast<std::uint32_t>(red | green << 8 | blue << 16);
}

class MainWindow : public Fl_Double_Window {
 public:
  using Fl_Double_Window::Fl_Double_Window;

  void resize(int x, int y, int w, int h) override {
    const bool resized = w != this->w() || h != this->h();
    Fl_Double_Window::resize(x, y, w, h);
    if (resized && resizeEventsOn) handlers.resized();
  }

  /// Waits until the window has been on the screen once, but not for a window manager that keeps it
  /// back.
  void WaitUntilDrawn() const {
    for (int poll = 0; poll < MostShowingPolls && !drawn; ++poll) Fl::wait(ShowingPoll);
  }

 private:
  void draw() override {
    drawn = true;
    Fl_Double_Window::draw();
  }

  bool drawn = false;
};

struct Control {
  Fl_Widget* widget;  // owned by the window
  ControlLayout layout;
  std::string text = {};
  bool waits = false;  // the screen shows an older text or picture
};

MainWindow* mainWindow = nullptr;  // lives as long as the process
std::vector<Control> controls;

Control& At(int control) { return controls[static_cast<std::size_t>(control)]; }

PictureWidget& PictureAt(int control) { return static_cast<PictureWidget&>(*At(control).widget); }

void ShowText(Control& control) {
  const std::string text = ToUtf8(control.text);
  if (control.layout.kind == ControlKind::Button) {
    control.widget->copy_label(text.c_str());
  } else {
    static_cast<LabelWidget&>(*control.widget).SetText(text);
  }
}

void Display(Control& control) {
  control.waits = false;
  if (control.layout.kind != ControlKind::PictureBox) return ShowText(control);
  static_cast<PictureWidget&>(*control.widget).picture.Show();
  control.widget->redraw();
}

void DisplayWhatWaits() {
  for (auto& control : controls) {
    if (control.waits) Display(control);
  }
  pace.Displayed(TickCount());
}

void DisplaySoon(Control& control) {
  control.waits = true;
  if (displayMayWait) return;
  Display(control);
  Fl::flush();
}

void HandleEvents() {
  Fl::check();
  pace.EventsHandled(TickCount());
}

Fl_Widget* Button() {
  for (const auto& control : controls) {
    if (control.layout.kind == ControlKind::Button) return control.widget;
  }
  return nullptr;
}

/// What a screen says of its size in millimetres is rarely exact: the nearest quarter of the
/// unscaled resolution, as Windows offers them.
double TwipsPerPixel(float dotsPerInch) {
  const double quarters = std::max(4.0, std::round(4.0 * dotsPerInch / UnscaledDotsPerInch));
  return TwipsPerInch * 4.0 / (quarters * UnscaledDotsPerInch);
}

void MeasureScreen() {
  float horizontal = 0;
  float vertical = 0;
  Fl::screen_dpi(horizontal, vertical);
  scale = {TwipsPerPixel(horizontal), TwipsPerPixel(vertical)};
}

void ButtonPressed(Fl_Widget* /*button*/, void* /*data*/) { handlers.buttonClicked(); }

void WindowClosing(Fl_Widget* /*window*/, void* /*data*/) {
  // Escape is reported here too, and closes no window of this kind.
  if (Fl::event() != FL_SHORTCUT) handlers.closing();
}

linux_layer::PushButton* CreateButton(int x, int y, int w, int h) {
  auto* button = new linux_layer::PushButton(x, y, w, h);
  button->labelsize(scale.PixelsY(linux_layer::LargestFont));
  button->shortcut(FL_Enter);
  button->callback(ButtonPressed);
  return button;
}

Fl_Widget* CreateWidget(const ControlLayout& layout) {
  const int x = scale.PixelsX(layout.left);
  const int y = scale.PixelsY(layout.top);
  const int w = scale.PixelsX(layout.width);
  const int h = scale.PixelsY(layout.height);
  switch (layout.kind) {
    case ControlKind::ProgramIcon:
      return new IconWidget(x, y, w, h,
                            scale.PixelsY(UnscaledIconSize * TwipsPerInch / UnscaledDotsPerInch));
    case ControlKind::PictureBox:
      return new PictureWidget(x, y, w, h, scale);
    case ControlKind::Button:
      return CreateButton(x, y, w, h);
    case ControlKind::Label:
    case ControlKind::WrappingLabel:
    case ControlKind::RightAlignedLabel:
      break;
  }
  return new LabelWidget(x, y, w, h, layout.kind, scale);
}

/// The window manager takes the size that it likes.
bool UseIcon(std::string_view file) {
  const auto icon = linux_layer::ReadIcon(file, UnscaledIconSize);
  if (icon) mainWindow->icon(icon.get());  // copies it
  return icon != nullptr;
}

void CentreWindow() {
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;
  Fl::screen_work_area(x, y, w, h);
  mainWindow->position(x + (w - mainWindow->w()) / 2, y + (h - mainWindow->h()) / 2);
}

}  // namespace

void Create(const Layout& layout, const Handlers& callbacks) {
  handlers = callbacks;
  Fl::set_font(linux_layer::Font, linux_layer::FontFamilies);
  MeasureScreen();
  mainWindow =
      new MainWindow(scale.PixelsX(layout.clientWidth), scale.PixelsY(layout.clientHeight));
  mainWindow->xclass(WindowClass);
  mainWindow->color(linux_layer::Grey);
  mainWindow->callback(WindowClosing);
  for (const auto& control : layout.controls) {
    controls.push_back({CreateWidget(control), control});
  }
  mainWindow->end();
  SetWindowCaption(layout.caption);
  (void)UseIcon(linux_layer::BuiltInIconFile());
  CentreWindow();
}

void Show() {
  DisplayWhatWaits();
  mainWindow->show();
  mainWindow->WaitUntilDrawn();
  Button()->take_focus();
  if (!resizeEventsOn) {
    resizeEventsOn = true;
    handlers.resized();
  }
}

void SetWindowCaption(std::string_view caption) { mainWindow->copy_label(ToUtf8(caption).c_str()); }

void SetWindowIcon(const std::string& path) {
  std::ifstream file(linux_layer::ToSystemPath(path), std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  (void)UseIcon(content.str());  // what is no icon changes nothing
}

void SetWindowHeight(int height) {
  mainWindow->size(mainWindow->w(), scale.PixelsY(height - HeightOfDecoration));
}

void SetText(int control, std::string_view value) {
  Control& target = At(control);
  if (target.text == value) return;
  target.text = value;
  DisplaySoon(target);
}

std::string Text(int control) { return At(control).text; }

void SetVisible(int control, bool visible) {
  if (visible) {
    At(control).widget->show();
  } else {
    At(control).widget->hide();
  }
}

void SetEnabled(int control, bool enabled) {
  DisplayWhatWaits();
  Fl_Widget& widget = *At(control).widget;
  const bool isButton = At(control).layout.kind == ControlKind::Button;
  if (isButton) displayMayWait = enabled;
  if (!enabled) {
    // The release of a button that is held down would not come any more.
    if (isButton) static_cast<Fl_Button&>(widget).value(0);
    return widget.deactivate();
  }
  // What was pressed while the control was disabled must not reach it when it is enabled.
  if (!IsEnabled(control)) HandleEvents();
  widget.activate();
  Button()->take_focus();
}

bool IsEnabled(int control) { return At(control).widget->active() != 0; }

void SetTop(int control, int top) {
  Fl_Widget& widget = *At(control).widget;
  widget.position(widget.x(), scale.PixelsY(top));
  mainWindow->redraw();
}

double TwipsPerPixelX() { return scale.twipsPerPixelX; }
double TwipsPerPixelY() { return scale.twipsPerPixelY; }

PictureBox DescribePictureBox(int control) {
  const ControlLayout& layout = At(control).layout;
  return {false, layout.width, layout.height, ValueOf(linux_layer::Highlight)};
}

void ErasePictureBox(int control) { PictureAt(control).picture.Erase(); }

void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t colour) {
  PictureAt(control).picture.Draw({left, top, right, bottom, colour});
}

void RefreshPictureBox(int control) {
  Control& box = At(control);
  if (PictureAt(control).picture.HasChanged()) {
    DisplaySoon(box);
  } else {
    box.waits = false;
  }
}

void SetMousePointer(MousePointer pointer) {
  mainWindow->cursor(pointer == MousePointer::Hourglass ? FL_CURSOR_WAIT : FL_CURSOR_DEFAULT);
  Fl::flush();
}

int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title) {
  DisplayWhatWaits();
  return linux_layer::RunMessageBox(ToUtf8(text), style, ToUtf8(title),
                                    scale.PixelsY(linux_layer::LargestFont));
}

void ProcessPendingEvents() {
  DisplayWhatWaits();
  HandleEvents();
}

void ProcessPendingEventsInLoop() {
  if (pace.FrameIsOver(TickCount())) DisplayWhatWaits();
  if (pace.EventsAreDue(TickCount())) HandleEvents();
}

void RunEventLoop() {
  while (true) Fl::wait();
}

}  // namespace platform::window
