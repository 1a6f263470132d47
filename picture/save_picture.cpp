// SPDX-License-Identifier: MIT
// t_SavePicture: a window's picture as a PNG file, through libpng's simplified interface. The
// picture's alpha is always opaque, so the file holds red, green and blue only.
#include <png.h>

#include <optional>
#include <vector>

#include "picture/file_output.hpp"
#include "picture/window_picture.hpp"
#include "rvtools/display.hpp"
#include "rvtools/picture.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

// The reason the window has no picture to save, or nothing when it has one.
std::optional<std::string> missingPicture(UInt8 window) {
  if (std::optional<std::string> reason = picture::missingWindow(window)) return reason;
  if (!Windows[window].Visible) return "Window #" + std::to_string(window) + " is not visible.";
  return std::nullopt;
}

// Bytes A, R, G, B to bytes R, G, B.
std::vector<png_byte> rgbPixels(const t_Image& picture) {
  std::vector<png_byte> rgb;
  rgb.reserve(picture.Pixels.size() / 4 * 3);
  for (std::size_t i = 0; i + 3 < picture.Pixels.size(); i += 4) {
    rgb.insert(rgb.end(), {picture.Pixels[i + 1], picture.Pixels[i + 2], picture.Pixels[i + 3]});
  }
  return rgb;
}

std::optional<std::vector<png_byte>> pngBytes(const t_Image& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.Width);
  image.height = static_cast<png_uint_32>(picture.Height);
  image.format = PNG_FORMAT_RGB;
  const std::vector<png_byte> rgb = rgbPixels(picture);
  png_alloc_size_t size = 0;
  if (!png_image_write_to_memory(&image, nullptr, &size, 0, rgb.data(), 0, nullptr)) {
    return std::nullopt;
  }
  std::vector<png_byte> bytes(size);
  if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, rgb.data(), 0, nullptr)) {
    return std::nullopt;
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

bool t_SavePicture(UInt8 window, const std::string& path) {
  if (const std::optional<std::string> reason = missingPicture(window)) {
    t_Log("t_SavePicture: " + *reason);
    return false;
  }
  const std::optional<t_Image> picture = t_WindowImage(window);
  const std::optional<std::vector<png_byte>> bytes =
      picture ? pngBytes(*picture) : std::optional<std::vector<png_byte>>();
  if (!bytes) {
    t_Log("t_SavePicture: Window #" + std::to_string(window) + " has no picture.");
    return false;
  }
  if (const std::optional<std::string> failure = picture::writeFileAtomically(path, *bytes)) {
    t_Log("t_SavePicture: Could not write „" + path + "“: " + *failure + ".");
    return false;
  }
  return true;
}

}  // namespace rvtools
