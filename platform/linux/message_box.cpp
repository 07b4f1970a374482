#include "platform/linux/message_box.h"

#include <FL/Fl.H>
#include <FL/Fl_Double_Window.H>
#include <FL/fl_draw.H>

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/linux/widgets.h"

namespace platform::linux_layer {
namespace {

// Numbers of winuser.h.
constexpr std::uint32_t KindOfButtons = 0x0F;
constexpr std::uint32_t KindOfIcon = 0xF0;
constexpr std::uint32_t YesNo = 4;
constexpr int Ok = 1;
constexpr int Yes = 6;
constexpr int No = 7;

// In font sizes.
constexpr int Margin = 1;
constexpr int IconSize = 3;
constexpr int WidestText = 38;
constexpr int ButtonWidth = 7;
constexpr int ButtonHeight = 2;

struct Sign {
  const char* letter;
  std::uint32_t icon;
  Fl_Color colour;
};
constexpr Sign Signs[] = {{"\u00D7", 16, 0xC42B1C00},
                          {"?", 32, 0x12557F00},
                          {"!", 48, 0xD98A0000},
                          {"i", 64, 0x12557F00}};

/// A text in which "@" and "&" have no meaning of their own.
class PlainText : public Fl_Widget {
 public:
  PlainText(int x, int y, int w, int h, int fontSize, std::string value)
      : Fl_Widget(x, y, w, h), size(fontSize), text(std::move(value)) {}

 private:
  void draw() override {
    fl_font(Font, size);
    fl_color(FL_BLACK);
    fl_draw(text.c_str(), x(), y(), w(), h(), FL_ALIGN_LEFT | FL_ALIGN_WRAP | FL_ALIGN_INSIDE,
            nullptr, 0);
  }

  int size;
  std::string text;
};

class SignBox : public Fl_Widget {
 public:
  SignBox(int x, int y, int side, const Sign& shown) : Fl_Widget(x, y, side, side), sign(shown) {}

 private:
  void draw() override {
    fl_color(sign.colour);
    fl_pie(x(), y(), w(), h(), 0, 360);
    fl_color(FL_WHITE);
    fl_font(FL_HELVETICA_BOLD, h() * 2 / 3);
    fl_draw(sign.letter, x(), y(), w(), h(), FL_ALIGN_CENTER, nullptr, 0);
  }

  const Sign& sign;
};

struct ChoiceButton {
  const char* caption;
  int value;
};

std::vector<ChoiceButton> ButtonsOf(std::uint32_t style) {
  if ((style & KindOfButtons) == YesNo) return {{"S\u00ED", Yes}, {"No", No}};
  return {{"Aceptar", Ok}};
}

const Sign* SignOf(std::uint32_t style) {
  const auto* found = std::find_if(std::begin(Signs), std::end(Signs), [style](const Sign& sign) {
    return sign.icon == (style & KindOfIcon);
  });
  return found == std::end(Signs) ? nullptr : found;
}

/// The button that was pressed, and so the end of the box.
int pressed = 0;

void Press(Fl_Widget* /*button*/, long value) { pressed = static_cast<int>(value); }

/// Like the button: the box of one button may be closed, that of a question may not.
void Close(Fl_Widget* /*window*/, long buttonCount) {
  if (buttonCount == 1) pressed = Ok;
}

void AddButtons(const std::vector<ChoiceButton>& choices, Fl_Window& box, int top, int fontSize) {
  const int pitch = (ButtonWidth + Margin) * fontSize;
  int left = (box.w() - static_cast<int>(choices.size()) * pitch + Margin * fontSize) / 2;
  for (const auto& choice : choices) {
    auto* button =
        new PushButton(left, top, ButtonWidth * fontSize, ButtonHeight * fontSize, choice.caption);
    box.add(button);
    button->labelsize(fontSize);
    button->callback(Press, choice.value);
    if (choice.value == choices.front().value) button->shortcut(FL_Enter);
    left += pitch;
  }
}

}  // namespace

int RunMessageBox(const std::string& text, std::uint32_t style, const std::string& title,
                  int fontSize) {
  const auto choices = ButtonsOf(style);
  const Sign* sign = SignOf(style);
  const int margin = Margin * fontSize;
  const int iconSide = sign != nullptr ? IconSize * fontSize : 0;
  const int textLeft = 2 * margin + iconSide + (sign != nullptr ? margin : 0);
  int textWidth = WidestText * fontSize;
  int textHeight = 0;
  fl_font(Font, fontSize);
  fl_measure(text.c_str(), textWidth, textHeight, 0);
  const int bodyHeight = std::max(textHeight, iconSide);
  const int buttonsWidth = static_cast<int>(choices.size()) * (ButtonWidth + Margin) * fontSize;
  const int width = std::max(textLeft + textWidth, buttonsWidth + margin) + 2 * margin;

  Fl_Double_Window box(width, bodyHeight + ButtonHeight * fontSize + 5 * margin);
  box.copy_label(title.c_str());
  box.end();  // no widget joins by itself
  box.color(Grey);
  if (sign != nullptr) box.add(new SignBox(2 * margin, 2 * margin, iconSide, *sign));
  // A little wider than measured, so that no word moves to the next line by rounding.
  box.add(new PlainText(textLeft, 2 * margin, textWidth + margin, bodyHeight, fontSize, text));
  AddButtons(choices, box, bodyHeight + 3 * margin + margin / 2, fontSize);
  box.callback(Close, static_cast<long>(choices.size()));
  box.set_modal();
  if (const Fl_Window* owner = Fl::first_window()) {
    box.position(owner->x() + (owner->w() - box.w()) / 2, owner->y() + (owner->h() - box.h()) / 2);
  }
  pressed = 0;
  box.show();
  while (pressed == 0) Fl::wait();
  return pressed;
}

}  // namespace platform::linux_layer
