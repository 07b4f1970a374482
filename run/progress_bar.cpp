#include "run/progress_bar.h"

#include <algorithm>

#include "base/rounding.h"
#include "platform/window.h"

namespace modFunciones {
namespace {

namespace window = platform::window;

// Screen pixels.
constexpr int FlatBorder = 4;
constexpr int ThreeDimensionalBorder = 6;
constexpr int SegmentWidth = 6;
constexpr int SegmentPitch = 9;

void DrawSegments(int picture, const window::PictureBox& box, float fraction) {
  const int border = box.flatLook ? FlatBorder : ThreeDimensionalBorder;
  const double pixel = window::TwipsPerPixelX();
  const auto left = RoundToEven(pixel);
  const auto top = RoundToEven(window::TwipsPerPixelY());
  const double filled = fraction * static_cast<double>(box.width);
  const auto right =
      RoundToEven(std::min<double>(filled - static_cast<double>(left * border), box.width));
  const auto bottom = box.height - top * border;
  if (right <= left) return;

  const auto pitch = RoundToEven(pixel * SegmentPitch);
  for (auto x = left; x <= right; x += pitch) {
    const auto from = static_cast<double>(x);
    window::DrawFilledRectangle(picture, from, static_cast<double>(top),
                                from + pixel * SegmentWidth, static_cast<double>(bottom),
                                box.foregroundColour);
  }
}

}  // namespace

void DrawProgressBar(int picture, float fraction) {
  window::ErasePictureBox(picture);
  if (fraction > 0.0F) DrawSegments(picture, window::DescribePictureBox(picture), fraction);
  window::RefreshPictureBox(picture);
}

}  // namespace modFunciones
