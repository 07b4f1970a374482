#include "platform/window.h"

#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/fl_ask.H>
#include <FL/fl_draw.H>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "base/replace.h"
#include "base/text.h"
#include "platform/pace.h"
#include "platform/picture.h"

namespace platform::window {
namespace {

using modFunciones::ToUtf8;

constexpr double TwipsPerPixel = 15;
constexpr double HeightOfDecoration = 390;  // twips: title bar and borders of the Windows window
constexpr int FontSize = 10;                // pixels; the captions have room in their labels
/// The font of Windows, or one that is as narrow.
constexpr const char* FontFamilies = " Tahoma,DejaVu Sans Condensed";
constexpr const char* WindowClass = "Kestrane";

// The colours of Windows. Here a colour is red, green, blue and a byte of zeros.
constexpr uchar Grey = 0xF5;
constexpr std::uint32_t HighlightOfWindows = 0xFA9630;  // blue, green and red
constexpr Fl_Color IconBlue = 0x12557F00;

// Numbers of winuser.h.
constexpr std::uint32_t KindOfButtons = 0x0F;
constexpr std::uint32_t KindOfIcon = 0xF0;
constexpr std::uint32_t YesNo = 4;
constexpr int Ok = 1;
constexpr int Yes = 6;
constexpr int No = 7;

int Pixels(double twips) { return static_cast<int>(std::lround(twips / TwipsPerPixel)); }

/// A text whose "@" has no meaning of its own.
std::string Label(std::string_view text) {
  return modFunciones::ReplaceAll(ToUtf8(text), "@", "@@");
}

/// Milliseconds, from some moment on.
std::uint32_t TickCount() {
  using namespace std::chrono;
  const auto now = steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(duration_cast<milliseconds>(now).count());
}

class PictureWidget : public Fl_Box {
 public:
  using Fl_Box::Fl_Box;

  Picture picture;

 private:
  void draw() override {
    draw_box(FL_DOWN_BOX, FL_WHITE);
    const int left = x() + Fl::box_dx(FL_DOWN_BOX);
    const int top = y() + Fl::box_dy(FL_DOWN_BOX);
    fl_push_clip(left, top, w() - Fl::box_dw(FL_DOWN_BOX), h() - Fl::box_dh(FL_DOWN_BOX));
    for (const auto& area : picture.Shown()) {
      fl_color(static_cast<uchar>(area.colour), static_cast<uchar>(area.colour >> 8U),
               static_cast<uchar>(area.colour >> 16U));
      fl_rectf(left + Pixels(area.left), top + Pixels(area.top),
               Pixels(area.right) - Pixels(area.left), Pixels(area.bottom) - Pixels(area.top));
    }
    fl_pop_clip();
  }
};

struct Control {
  Fl_Widget* widget;  // owned by the window
  ControlLayout layout;
  std::string text = {};
};

// Written by Create, and where not by the procedures that change the thing in question.
Handlers handlers{};
Fl_Double_Window* mainWindow = nullptr;  // lives as long as the process
std::vector<Control> controls;
bool resizeEventsOn = false;  // set by the first Show
bool displayMayWait = true;   // not while the button is disabled: what follows may block
Pace pace;

Control& At(int control) { return controls[static_cast<std::size_t>(control)]; }

PictureWidget& PictureAt(int control) { return static_cast<PictureWidget&>(*At(control).widget); }

/// A widget that was changed is painted when events are handled.
void PaintUnlessItMayWait() {
  if (!displayMayWait) Fl::flush();
}

Fl_Widget* Button() {
  for (const auto& control : controls) {
    if (control.layout.kind == ControlKind::Button) return control.widget;
  }
  return nullptr;
}

void ButtonPressed(Fl_Widget* /*button*/, void* /*data*/) { handlers.buttonClicked(); }

void WindowClosing(Fl_Widget* /*window*/, void* /*data*/) {
  // Escape is reported here too, and closes no window of this kind.
  if (Fl::event() != FL_SHORTCUT) handlers.closing();
}

Fl_Widget* CreateButton(int x, int y, int w, int h) {
  auto* button = new Fl_Button(x, y, w, h);
  button->shortcut(FL_Enter);
  button->callback(ButtonPressed);
  return button;
}

Fl_Widget* CreateLabel(int x, int y, int w, int h, ControlKind kind) {
  constexpr int Padding = 3;  // pixels, which the toolkit keeps free at either side
  auto* label = new Fl_Box(FL_FLAT_BOX, x - Padding, y, w + 2 * Padding, h, "");
  const Fl_Align side = kind == ControlKind::RightAlignedLabel ? FL_ALIGN_RIGHT : FL_ALIGN_LEFT;
  // The longest message takes a line more than there is room for, and the final screen has it.
  const Fl_Align lines =
      kind == ControlKind::WrappingLabel ? FL_ALIGN_WRAP | FL_ALIGN_TOP : FL_ALIGN_CLIP;
  label->align(FL_ALIGN_INSIDE | side | lines);
  return label;
}

/// Two arrows that turn; a file of icons is nothing that the toolkit reads.
Fl_Widget* CreateIcon(int x, int y, int w, int h) {
  auto* icon = new Fl_Box(FL_RFLAT_BOX, x, y, w, h, "@refresh");
  icon->color(IconBlue);
  icon->labelcolor(FL_WHITE);
  icon->labelsize(h / 2);
  return icon;
}

Fl_Widget* CreateWidget(const ControlLayout& layout) {
  const int x = Pixels(layout.left);
  const int y = Pixels(layout.top);
  const int w = Pixels(layout.width);
  const int h = Pixels(layout.height);
  switch (layout.kind) {
    case ControlKind::ProgramIcon:
      return CreateIcon(x, y, w, h);
    case ControlKind::PictureBox:
      return new PictureWidget(x, y, w, h);
    case ControlKind::Button:
      return CreateButton(x, y, w, h);
    case ControlKind::Label:
    case ControlKind::WrappingLabel:
    case ControlKind::RightAlignedLabel:
      break;
  }
  return CreateLabel(x, y, w, h, layout.kind);
}

/// The toolkit's box makes a line as wide as its text.
std::string InLines(std::string text) {
  constexpr std::size_t LongestLine = 70;  // characters, about
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ' ' && i - start > LongestLine) text[i] = '\n';
    if (text[i] == '\n') start = i;
  }
  return text;
}

/// Null when the style has none.
const char* SignOf(std::uint32_t style) {
  switch (style & KindOfIcon) {
    case 0x10:
      return "\u00D7";
    case 0x20:
      return "?";
    case 0x30:
      return "!";
    case 0x40:
      return "i";
    default:
      return nullptr;
  }
}

/// Makes the next box look and stand like one of the program's.
void PrepareMessageBox(std::uint32_t style, std::string_view title) {
  Fl_Widget& icon = *fl_message_icon();
  const char* sign = SignOf(style);
  icon.label(sign);
  if (sign != nullptr) {
    icon.show();
  } else {
    icon.hide();
  }
  icon.window()->position(mainWindow->x(), mainWindow->y());
  fl_message_font(FL_HELVETICA, FontSize);
  fl_message_title(ToUtf8(title).c_str());
  fl_message_hotspot(0);
}

}  // namespace

void Create(const Layout& layout, const Handlers& callbacks) {
  handlers = callbacks;
  Fl::set_font(FL_HELVETICA, FontFamilies);
  FL_NORMAL_SIZE = FontSize;
  Fl::scheme("gleam");
  Fl::background(Grey, Grey, Grey);
  mainWindow = new Fl_Double_Window(Pixels(layout.clientWidth), Pixels(layout.clientHeight));
  mainWindow->xclass(WindowClass);
  mainWindow->callback(WindowClosing);
  for (const auto& control : layout.controls) {
    controls.push_back({CreateWidget(control), control});
  }
  mainWindow->end();
  mainWindow->position((Fl::w() - mainWindow->w()) / 2, (Fl::h() - mainWindow->h()) / 2);
  SetWindowCaption(layout.caption);
}

void Show() {
  mainWindow->show();
  mainWindow->wait_for_expose();
  Button()->take_focus();
  if (!resizeEventsOn) {
    resizeEventsOn = true;
    handlers.resized();
  }
}

void SetWindowCaption(std::string_view caption) { mainWindow->copy_label(ToUtf8(caption).c_str()); }

void SetWindowIcon(const std::string& /*path*/) {}

void SetWindowHeight(int height) {
  const int pixels = Pixels(height - HeightOfDecoration);
  if (pixels == mainWindow->h()) return;
  mainWindow->size(mainWindow->w(), pixels);
  if (resizeEventsOn) handlers.resized();
}

void SetText(int control, std::string_view value) {
  Control& target = At(control);
  if (target.text == value) return;
  target.text = value;
  target.widget->copy_label(Label(value).c_str());
  PaintUnlessItMayWait();
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
  Fl_Widget& widget = *At(control).widget;
  const bool isButton = At(control).layout.kind == ControlKind::Button;
  if (isButton) displayMayWait = enabled;
  if (enabled) {
    // What was pressed while the control was disabled must not reach it when it is enabled.
    if (!IsEnabled(control)) Fl::check();
    widget.activate();
    Button()->take_focus();
  } else {
    // The release of a button that is held down would not come any more.
    if (isButton) static_cast<Fl_Button&>(widget).value(0);
    widget.deactivate();
  }
  Fl::flush();
}

bool IsEnabled(int control) { return At(control).widget->active() != 0; }

void SetTop(int control, int top) {
  Fl_Widget& widget = *At(control).widget;
  widget.position(widget.x(), Pixels(top));
  mainWindow->redraw();
}

double TwipsPerPixelX() { return TwipsPerPixel; }
double TwipsPerPixelY() { return TwipsPerPixel; }

PictureBox DescribePictureBox(int control) {
  const ControlLayout& layout = At(control).layout;
  return {false, layout.width, layout.height, HighlightOfWindows};
}

void ErasePictureBox(int control) { PictureAt(control).picture.Erase(); }

void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t colour) {
  PictureAt(control).picture.Draw({left, top, right, bottom, colour});
}

void RefreshPictureBox(int control) {
  PictureWidget& box = PictureAt(control);
  if (!box.picture.HasChanged()) return;
  box.picture.Show();
  box.redraw();
  PaintUnlessItMayWait();
}

void SetMousePointer(MousePointer pointer) {
  mainWindow->cursor(pointer == MousePointer::Hourglass ? FL_CURSOR_WAIT : FL_CURSOR_DEFAULT);
  Fl::flush();
}

int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title) {
  PrepareMessageBox(style, title);
  const std::string message = InLines(Label(text));
  const bool asks = (style & KindOfButtons) == YesNo;
  // Escape, or closing the box, is the first button, Enter the second.
  const int pressed = fl_choice("%s", asks ? "No" : nullptr, asks ? "S\u00ED" : "Aceptar", nullptr,
                                message.c_str());
  if (!asks) return Ok;
  return pressed == 1 ? Yes : No;
}

void ProcessPendingEvents() {
  Fl::check();
  pace.Displayed(TickCount());
}

void ProcessPendingEventsInLoop() {
  if (pace.FrameIsOver(TickCount())) ProcessPendingEvents();
}

void RunEventLoop() {
  while (true) Fl::wait();
}

}  // namespace platform::window
