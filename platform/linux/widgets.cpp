#include "platform/linux/widgets.h"

#include <FL/Fl.H>
#include <FL/fl_draw.H>

namespace platform::linux_layer {

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
