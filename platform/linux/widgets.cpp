#include "platform/linux/widgets.h"

#include <FL/Fl.H>
#include <FL/fl_draw.H>

#include "platform/linux/icon_file.h"

namespace platform::linux_layer {
namespace {

constexpr int FontSizes[] = {LargestFont, 150, 140, 130};  // twips
constexpr const char* Ellipsis = "\u2026";
constexpr int BorderOfPictures = 2;  // pixels

/// A red, green and blue byte from the lowest one on, as Windows writes a colour.
Fl_Color ColourOf(std::uint32_t value) {
  return fl_rgb_color(static_cast<uchar>(value), static_cast<uchar>(value >> 8U),
                      static_cast<uchar>(value >> 16U));
}

}  // namespace

LabelWidget::LabelWidget(int x, int y, int w, int h, window::ControlKind labelKind,
                         const Scale& ofScreen)
    : Fl_Widget(x, y, w, h), kind(labelKind), scale(ofScreen) {}

void LabelWidget::SetText(const std::string& utf8) {
  text = utf8;
  size = FittingSize();
  if (!Wraps() && !Fits(text, size)) Shorten();
  redraw();
}

bool LabelWidget::Wraps() const { return kind == window::ControlKind::WrappingLabel; }

bool LabelWidget::Fits(const std::string& value, int fontSize) const {
  int width = Wraps() ? w() : 0;
  int height = 0;
  fl_font(Font, fontSize);
  fl_measure(value.c_str(), width, height, 0);
  return width <= w() && (!Wraps() || height <= h());
}

int LabelWidget::FittingSize() const {
  int pixels = 0;
  for (const int twips : FontSizes) {
    pixels = scale.PixelsY(twips);
    if (Fits(text, pixels)) break;
  }
  return pixels;
}

void LabelWidget::Shorten() {
  while (!text.empty() && !Fits(text + Ellipsis, size)) {
    while ((static_cast<unsigned char>(text.back()) >> 6U) == 2U) text.pop_back();
    text.pop_back();
  }
  text += Ellipsis;
}

void LabelWidget::draw() {
  const bool right = kind == window::ControlKind::RightAlignedLabel;
  const Fl_Align side = right ? FL_ALIGN_RIGHT : FL_ALIGN_LEFT;
  const Fl_Align wrap = Wraps() ? FL_ALIGN_WRAP | FL_ALIGN_TOP : FL_ALIGN_CENTER;
  // A line of text may be a pixel higher than its label.
  fl_push_clip(x() - 1, y() - 1, w() + 2, h() + 2);
  fl_rectf(x() - 1, y() - 1, w() + 2, h() + 2, Grey);
  fl_font(Font, size);
  fl_color(FL_BLACK);
  fl_draw(text.c_str(), x(), y(), w(), h(), side | wrap | FL_ALIGN_INSIDE, nullptr, 0);
  fl_pop_clip();
}

PictureWidget::PictureWidget(int x, int y, int w, int h, const Scale& ofScreen)
    : Fl_Widget(x, y, w, h), scale(ofScreen) {}

void PictureWidget::draw() {
  DrawFrame(0, Fl_Color{0xA0A0A000}, FL_WHITE);
  DrawFrame(1, Fl_Color{0x69696900}, Fl_Color{0xE3E3E300});
  const int left = x() + BorderOfPictures;
  const int top = y() + BorderOfPictures;
  fl_push_clip(left, top, w() - 2 * BorderOfPictures, h() - 2 * BorderOfPictures);
  fl_rectf(left, top, w(), h(), FL_WHITE);
  for (const auto& area : picture.Shown()) {
    const int x = scale.PixelsX(area.left);
    const int y = scale.PixelsY(area.top);
    fl_rectf(left + x, top + y, scale.PixelsX(area.right) - x, scale.PixelsY(area.bottom) - y,
             ColourOf(area.colour));
  }
  fl_pop_clip();
}

void PictureWidget::DrawFrame(int inset, Fl_Color upperLeft, Fl_Color lowerRight) {
  const int left = x() + inset;
  const int top = y() + inset;
  const int right = x() + w() - 1 - inset;
  const int bottom = y() + h() - 1 - inset;
  fl_color(lowerRight);
  fl_yxline(right, top, bottom);
  fl_xyline(left, bottom, right);
  fl_color(upperLeft);
  fl_yxline(left, top, bottom - 1);
  fl_xyline(left, top, right - 1);
}

IconWidget::IconWidget(int x, int y, int w, int h, int side)
    : Fl_Widget(x, y, w, h), icon(ReadIcon(BuiltInIconFile(), side)->copy(side, side)) {}

void IconWidget::draw() { icon->draw(x() + (w() - icon->w()) / 2, y() + (h() - icon->h()) / 2); }

int PushButton::handle(int event) {
  const int key = Fl::event_key();
  if (event != FL_KEYBOARD || (key != FL_Enter && key != FL_KP_Enter)) {
    return Fl_Button::handle(event);
  }
  do_callback();
  return 1;
}

void PushButton::draw() {
  constexpr int Frame = 2;
  const int left = x() + Frame;
  const int top = y() + Frame;
  const int width = w() - 2 * Frame;
  const int height = h() - 2 * Frame;
  fl_rectf(x(), y(), w(), h(), active_r() != 0 ? Highlight : DarkGrey);
  fl_rectf(left, top, width, height, value() != 0 ? Grey : FL_WHITE);
  draw_label();
  if (Fl::focus() == this) draw_focus(FL_FLAT_BOX, left, top, width, height);
}

}  // namespace platform::linux_layer
