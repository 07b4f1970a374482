#pragma once

// What the window and the message boxes have in common.

#include <FL/Fl_Button.H>

namespace platform::linux_layer {

// The look of the Windows window.
inline const Fl_Color Grey = fl_rgb_color(0xF5, 0xF5, 0xF5);
inline const Fl_Color Highlight = fl_rgb_color(0x30, 0x96, 0xFA);
inline constexpr Fl_Font Font = FL_HELVETICA;
/// The font of Windows, or one that is as narrow.
inline constexpr const char* FontFamilies = " Tahoma,DejaVu Sans Condensed";

/// White, in a frame of the highlight's colour while it can be pressed. With the focus it is
/// pressed by Enter as well.
class PushButton : public Fl_Button {
 public:
  using Fl_Button::Fl_Button;

  int handle(int event) override;

 private:
  void draw() override;
};

}  // namespace platform::linux_layer
