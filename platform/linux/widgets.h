#pragma once

// What the window and the message boxes have in common.

#include <FL/Fl_Button.H>

namespace platform::linux_layer {

// The look of the Windows window. A colour is red, green, blue and a byte of zeros.
inline constexpr Fl_Color Grey = 0xF5F5F500;
inline constexpr Fl_Color DarkGrey = 0xC0C0C000;
inline constexpr Fl_Color Highlight = 0x3096FA00;
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
