// SPDX-License-Identifier: MIT
// libFuzzer target for the picture loader: any file reads without a crash, out-of-bounds access
// or hang into nothing or a picture whose bytes fill its sides, and a picture read comes back
// unchanged from the PNG file that libpng writes of it.
#include <png.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "picture/load_picture.hpp"
#include "rvtools/platform.hpp"

namespace {

using namespace rvtools;

void require(bool condition) {
  if (!condition) std::abort();
}

std::optional<t_Image> readBytes(const std::uint8_t* data, std::size_t size) {
  std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
  require(stream != nullptr);
  std::optional<t_Image> picture = picture::readPicture(stream, size, "fuzz.png");
  std::fclose(stream);
  return picture;
}

// The picture as an 8-bit RGBA PNG, written by libpng's simplified interface.
std::vector<std::uint8_t> pngOf(const t_Image& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.Width);
  image.height = static_cast<png_uint_32>(picture.Height);
  image.format = PNG_FORMAT_ARGB;
  png_alloc_size_t size = 0;
  require(png_image_write_to_memory(&image, nullptr, &size, 0, picture.Pixels.data(), 0, nullptr));
  std::vector<std::uint8_t> bytes(size);
  require(
      png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.Pixels.data(), 0, nullptr));
  bytes.resize(size);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setLogSink([](std::string_view) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<t_Image> picture = readBytes(data, size);
  if (!picture) return 0;
  require(picture->Width >= 1 && picture->Width <= LargestPictureSide);
  require(picture->Height >= 1 && picture->Height <= LargestPictureSide);
  require(picture->Pixels.size() == static_cast<std::size_t>(4 * picture->Width * picture->Height));
  const std::vector<std::uint8_t> again = pngOf(*picture);
  const std::optional<t_Image> reread = readBytes(again.data(), again.size());
  require(reread && reread->Pixels == picture->Pixels);
  return 0;
}
