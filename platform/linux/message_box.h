#pragma once

#include <cstdint>
#include <string>

namespace platform::linux_layer {

/// Shows a modal box and returns the number of the button that was pressed. Texts are UTF-8, style
/// and result those of the Windows call MessageBox; fontSize is in pixels.
int RunMessageBox(const std::string& text, std::uint32_t style, const std::string& title,
                  int fontSize);

}  // namespace platform::linux_layer
