#pragma once

#include <FL/Fl_RGB_Image.H>

#include <memory>
#include <string_view>

namespace platform::linux_layer {

using IconPicture = std::unique_ptr<Fl_RGB_Image>;

/// The picture of an icon file (.ico) that comes nearest to a size in pixels, from those of 32 bits
/// a pixel; null when there is none.
[[nodiscard]] IconPicture ReadIcon(std::string_view file, int pixels);

/// The program's own icon, as an icon file.
[[nodiscard]] std::string_view BuiltInIconFile();

}  // namespace platform::linux_layer
