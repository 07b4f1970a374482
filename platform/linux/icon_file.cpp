#include "platform/linux/icon_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace platform::linux_layer {
namespace {

// Layout of an icon file: a directory, then the pictures, each a bitmap header and its pixels.
constexpr std::size_t DirectorySize = 6;
constexpr std::size_t CountOffset = 4;
constexpr std::size_t EntrySize = 16;
constexpr std::size_t PictureOffset = 12;  // in an entry
constexpr std::size_t BitmapHeaderSize = 40;
constexpr std::size_t BitmapWidth = 4;  // in the bitmap header
constexpr std::size_t BitmapDepth = 14;
constexpr std::size_t BytesPerPixel = 4;
constexpr int LargestSize = 256;

/// A little-endian number; 0 beyond the end of the file.
std::uint32_t NumberAt(std::string_view file, std::size_t at, std::size_t bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = bytes; i > 0; --i) {
    const std::size_t place = at + i - 1;
    number = number << 8U | (place < file.size() ? static_cast<unsigned char>(file[place]) : 0U);
  }
  return number;
}

/// Rows from the bottom up, each pixel blue, green, red and opacity.
IconPicture ReadBitmap(std::string_view file, std::size_t at) {
  const auto size = static_cast<int>(NumberAt(file, at + BitmapWidth, 4));
  const std::size_t first = at + BitmapHeaderSize;
  if (NumberAt(file, at, 4) != BitmapHeaderSize || NumberAt(file, at + BitmapDepth, 2) != 32 ||
      size < 1 || size > LargestSize) {
    return nullptr;
  }
  const auto side = static_cast<std::size_t>(size);
  const std::size_t rowSize = side * BytesPerPixel;
  if (file.size() < first + side * rowSize) return nullptr;
  auto* pixels = new unsigned char[side * rowSize];
  for (std::size_t row = 0; row < side; ++row) {
    std::memcpy(pixels + row * rowSize, file.data() + first + (side - 1 - row) * rowSize, rowSize);
  }
  for (std::size_t i = 0; i < side * rowSize; i += BytesPerPixel) {
    std::swap(pixels[i], pixels[i + 2]);
  }
  auto picture = std::make_unique<Fl_RGB_Image>(pixels, size, size, int{BytesPerPixel});
  picture->alloc_array = 1;  // the picture owns the pixels
  return picture;
}

}  // namespace

IconPicture ReadIcon(std::string_view file, int pixels) {
  IconPicture nearest;
  int leastDistance = std::numeric_limits<int>::max();
  const std::size_t count = NumberAt(file, CountOffset, 2);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = DirectorySize + i * EntrySize;
    IconPicture picture = ReadBitmap(file, NumberAt(file, entry + PictureOffset, 4));
    if (!picture || std::abs(picture->w() - pixels) >= leastDistance) continue;
    leastDistance = std::abs(picture->w() - pixels);
    nearest = std::move(picture);
  }
  return nearest;
}

}  // namespace platform::linux_layer
