// Window image composition: turns a window's graphic memory into a picture of four bytes a
// pixel, for a view to show. Text needs no step of its own, because every character has
// already been drawn into the graphic memory. The picture is read while the program thread may
// still be drawing: a torn frame is accepted, and these functions are the one place that reads
// the video memory across threads.
#include <cstring>

#include "runtime/log.hpp"
#include "rvtools/display.hpp"
#include "rvtools/host.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

// A pixel as the word the chosen byte order stores: bytes A, R, G, B in memory, or the native
// 32-bit value 0xAARRGGBB.
template <PixelOrder order>
inline std::uint32_t pixelWord(UInt8 red, UInt8 green, UInt8 blue) {
  if constexpr (order == PixelOrder::NativeArgb32) {
    return 0xFF000000u | (std::uint32_t{red} << 16) | (std::uint32_t{green} << 8) | blue;
  } else {
    const UInt8 bytes[4] = {255, red, green, blue};
    std::uint32_t word;
    std::memcpy(&word, bytes, 4);
    return word;
  }
}

template <PixelOrder order>
std::uint32_t paletteWord(Int n) {
  return pixelWord<order>(PaletteRed[n], PaletteGreen[n], PaletteBlue[n]);
}

inline void storePixel(UInt8* out, Int p, std::uint32_t word) {
  std::memcpy(out + 4 * p, &word, 4);
}

struct Picture {
  const UInt8* memory;
  Int width;
  Int height;
};

template <PixelOrder order>
void composeOneBit(const Picture& picture, UInt8* out) {
  const std::uint32_t white = paletteWord<order>(15), black = paletteWord<order>(0);
  const Int pixels = picture.width * picture.height;
  for (Int p = 0; p < pixels; ++p) {
    const bool set = (picture.memory[p / 8] >> (7 - p % 8)) & 1;
    storePixel(out, p, set ? white : black);
  }
}

template <PixelOrder order>
void composeFourBit(const Picture& picture, UInt8* out) {
  std::uint32_t palette[16];
  for (Int n = 0; n < 16; ++n) palette[n] = paletteWord<order>(n);
  const Int pixels = picture.width * picture.height;
  for (Int p = 0; p < pixels; ++p) {
    const UInt8 pair = picture.memory[p / 2];
    storePixel(out, p, palette[p % 2 == 0 ? pair >> 4 : pair & 15]);
  }
}

// Grey levels: one byte a pixel at depth 8, the second of two bytes at depth 16.
template <PixelOrder order, Int stride, Int offset>
void composeGrey(const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  const UInt8* in = picture.memory + offset;
  for (Int p = 0; p < pixels; ++p) {
    const UInt8 grey = in[p * stride];
    storePixel(out, p, pixelWord<order>(grey, grey, grey));
  }
}

// Red, green, blue: at depth 24 three bytes a pixel, at depth 32 the last three of four.
template <PixelOrder order, Int stride, Int offset>
void composeColor(const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  const UInt8* in = picture.memory + offset;
  for (Int p = 0; p < pixels; ++p) {
    const UInt8* pixel = in + p * stride;
    storePixel(out, p, pixelWord<order>(pixel[0], pixel[1], pixel[2]));
  }
}

template <PixelOrder order>
bool compose(Int depth, const Picture& picture, UInt8* out) {
  switch (depth) {
    case 1:
      composeOneBit<order>(picture, out);
      return true;
    case 4:
      composeFourBit<order>(picture, out);
      return true;
    case 8:
      composeGrey<order, 1, 0>(picture, out);
      return true;
    case 16:
      composeGrey<order, 2, 1>(picture, out);
      return true;
    case 24:
      composeColor<order, 3, 0>(picture, out);
      return true;
    case 32:
      composeColor<order, 4, 1>(picture, out);
      return true;
    default:
      return false;
  }
}

Int pictureBytes(Int width, Int height, Int depth) {
  if (depth == 1) return width * height / 8;
  if (depth == 4) return width * height / 2;
  return height * depth * width / 8;
}

// Whether the window's picture lies inside its block of the video memory.
bool pictureFits(const t_Window& record, Int width, Int height, Int depth) {
  const Int start = record.MemoryStart;
  const Int last = start + pictureBytes(width, height, depth) - 1;
  return start >= 0 && last <= record.MemoryEnd && last < static_cast<Int>(VideoMemory.size());
}

Int microseconds(double seconds) {
  return static_cast<Int>(seconds * 1000000.0);
}

}  // namespace

bool t_WindowImageInto(UInt8 window, UInt8* pixels, std::size_t byteCount, PixelOrder order) {
  if (!MemoryInitialized) return false;
  if (window >= 8 || !Windows[window].Initialized) {
    logLine("t_WindowImage: Graphic window #", window, " not initialized.");
    return false;
  }
  t_Window& record = Windows[window];
  if (!record.Visible) return false;
  const double started = host().absoluteTime();
  const Int width = record.Width, height = record.Height, depth = record.BitDepth;
  if (width < 1 || height < 1 || width > 8192 || height > 8192) {
    logLine("t_WindowImage: Data could not be collected, image could not be created.");
    return false;
  }
  if (depth != 1 && depth != 4 && depth != 8 && depth != 16 && depth != 24 && depth != 32) {
    for (Int p = 0; p < width * height; ++p) logLine("t_WindowImage: Illegal bit depth.");
    return false;
  }
  if (!pictureFits(record, width, height, depth) ||
      byteCount < static_cast<std::size_t>(width * height * 4)) {
    logLine("t_WindowImage: Data could not be collected, image could not be created.");
    return false;
  }
  const Picture picture{VideoMemory.data() + record.MemoryStart, width, height};
  if (order == PixelOrder::NativeArgb32) {
    compose<PixelOrder::NativeArgb32>(depth, picture, pixels);
  } else {
    compose<PixelOrder::AlphaRedGreenBlue>(depth, picture, pixels);
  }
  record.UpdateDuration = microseconds(host().absoluteTime()) - microseconds(started);
  record.UpdateFinished = static_cast<Int>(host().absoluteTime() * 1000.0);
  return true;
}

std::optional<t_Image> t_WindowImage(UInt8 window) {
  if (!MemoryInitialized || window >= 8) {
    if (MemoryInitialized) logLine("t_WindowImage: Graphic window #", window, " not initialized.");
    return std::nullopt;
  }
  const Int width = Windows[window].Width, height = Windows[window].Height;
  t_Image image{width, height, {}};
  if (width > 0 && height > 0 && width <= 8192 && height <= 8192) {
    image.Pixels.resize(static_cast<std::size_t>(width * height * 4));
  }
  if (!t_WindowImageInto(window, image.Pixels.data(), image.Pixels.size(),
                         PixelOrder::AlphaRedGreenBlue)) {
    return std::nullopt;
  }
  return image;
}

}  // namespace rvtools
