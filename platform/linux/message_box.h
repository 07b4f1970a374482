#pragma once

#include <FL/Fl_Widget.H>

#include <cstdint>
#include <string>

namespace platform::linux_layer {

// The colours of the Windows window.
inline const Fl_Color Grey = fl_rgb_color(0xF5, 0xF5, 0xF5);
inline const Fl_Color Highlight = fl_rgb_color(0x30, 0x96, 0xFA);

/// Shows a modal box and returns the number of the button that was pressed. Texts are UTF-8, style
/// and result those of the Windows call MessageBox; fontSize is in pixels.
int RunMessageBox(const std::string& text, std::uint32_t style, const std::string& title,
                  int fontSize);

}  // namespace platform::linux_layer
