#pragma once

// The controls of the window, and what they have in common with the message boxes.

#include <FL/Fl_Button.H>
#include <FL/Fl_Image.H>

#include <cmath>
#include <memory>
#include <string>

#include "platform/picture.h"
#include "platform/window.h"

namespace platform::linux_layer {

// The look of the Windows window. A colour is red, green, blue and a byte of zeros.
inline constexpr Fl_Color Grey = 0xF5F5F500;
inline constexpr Fl_Color DarkGrey = 0xC0C0C000;
inline constexpr Fl_Color Highlight = 0x3096FA00;
inline constexpr Fl_Font Font = FL_HELVETICA;
/// The font of Windows, or one that is as narrow.
inline constexpr const char* FontFamilies = " Tahoma,DejaVu Sans Condensed";
inline constexpr int LargestFont = 160;  // twips

struct Scale {
  double twipsPerPixelX = 0;
  double twipsPerPixelY = 0;

  [[nodiscard]] int PixelsX(double twips) const {
    return static_cast<int>(std::lround(twips / twipsPerPixelX));
  }
  [[nodiscard]] int PixelsY(double twips) const {
    return static_cast<int>(std::lround(twips / twipsPerPixelY));
  }
};

/// A label takes the first of some font sizes in which its text fits, so that no message is cut
/// off. A line that fits in none ends with an ellipsis.
class LabelWidget : public Fl_Widget {
 public:
  LabelWidget(int x, int y, int w, int h, window::ControlKind kind, const Scale& scale);

  void SetText(const std::string& utf8);

 private:
  void draw() override;
  [[nodiscard]] bool Wraps() const;
  [[nodiscard]] bool Fits(const std::string& value, int fontSize) const;
  [[nodiscard]] int FittingSize() const;
  void Shorten();

  window::ControlKind kind;
  Scale scale;
  std::string text;
  int size = 0;  // pixels
};

/// A white box, sunken by a border of two pixels, with its picture.
class PictureWidget : public Fl_Widget {
 public:
  PictureWidget(int x, int y, int w, int h, const Scale& scale);

  Picture picture;

 private:
  void draw() override;
  void DrawFrame(int inset, Fl_Color upperLeft, Fl_Color lowerRight);

  Scale scale;
};

/// The program's own icon in the middle of its place; side is in pixels.
class IconWidget : public Fl_Widget {
 public:
  IconWidget(int x, int y, int w, int h, int side);

 private:
  void draw() override;

  std::unique_ptr<Fl_Image> icon;
};

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
