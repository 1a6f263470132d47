// SPDX-License-Identifier: MIT
// Window image composition: turns a window's graphic memory into a picture of four bytes a
// pixel, for a view to show. Text needs no step of its own, because every character has
// already been drawn into the graphic memory. The picture is read while the program thread may
// still be drawing: a torn frame is accepted, and these functions are the one place that reads
// the video memory across threads. Depends on the window records, the video memory and the
// palette (runtime), the host's clock and the log.
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "display/composition.hpp"
#include "runtime/checks.hpp"
#include "runtime/clock.hpp"
#include "runtime/log.hpp"
#include "runtime/processor.hpp"
#include "rvtools/display.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

constexpr bool LittleEndian = std::endian::native == std::endian::little;

// A pixel as the 32-bit word that the byte order stores: bytes A, R, G, B in memory, or the
// native value 0xAARRGGBB.
template <PixelOrder order>
inline std::uint32_t pixelWord(UInt8 red, UInt8 green, UInt8 blue) {
  const std::uint32_t native =
      0xFF000000u | (std::uint32_t{red} << 16) | (std::uint32_t{green} << 8) | blue;
  if constexpr (order == PixelOrder::AlphaRedGreenBlue && LittleEndian) {
    return __builtin_bswap32(native);
  } else {
    return native;
  }
}

template <PixelOrder order>
inline std::uint32_t greyWord(UInt8 grey) {
  return pixelWord<order>(grey, grey, grey);
}

inline void storePixel(UInt8* out, Int p, std::uint32_t word) {
  std::memcpy(out + 4 * p, &word, 4);
}

template <PixelOrder order>
std::uint32_t paletteWord(int n) {
  return pixelWord<order>(PaletteRed[n], PaletteGreen[n], PaletteBlue[n]);
}

// The palette colour that a value of a packed pixel shows: a set bit is colour 15 and a clear
// bit colour 0; a nibble is its own colour.
template <int bits>
constexpr int packedColourNumber(int value) {
  return bits == 1 ? 15 * value : value;
}

// The value of pixel p, in column x, of a picture of 1 or 4 bits a pixel: the pixel's byte is
// counted from p, its bits are chosen by its column, the leftmost pixel in the high bits.
template <int bits>
int packedValue(const UInt8* memory, Int p, Int x) {
  constexpr int perByte = 8 / bits, mask = (1 << bits) - 1;
  const int shift = 8 - bits * (static_cast<int>(x % perByte) + 1);
  return (memory[p / perByte] >> shift) & mask;
}

// Depths 1 and 4 pack 8 or 2 pixels into a byte, the leftmost in the high bits. A pixel's bits
// are chosen by its column x. When the width is a multiple of the pixels a byte, every row
// starts on a byte boundary, and the picture converts a whole byte at a time through a table.
// The pixels before `first`, a multiple of 8, are already converted.
template <PixelOrder order, int bits>
void composePacked(Int first, const Picture& picture, UInt8* out) {
  constexpr int perByte = 8 / bits, mask = (1 << bits) - 1;
  std::uint32_t colours[16];
  for (int value = 0; value <= mask; ++value) {
    colours[value] = paletteWord<order>(packedColourNumber<bits>(value));
  }
  if (picture.width % perByte == 0) {
    std::uint32_t table[256][perByte];
    for (int byte = 0; byte < 256; ++byte) {
      for (int i = 0; i < perByte; ++i)
        table[byte][i] = colours[(byte >> (8 - bits * (i + 1))) & mask];
    }
    const Int bytes = picture.width * picture.height / perByte;
    for (Int i = first / perByte; i < bytes; ++i) {
      std::memcpy(out + 4 * perByte * i, table[picture.memory[i]], sizeof table[0]);
    }
    return;
  }
  const Int pixels = picture.width * picture.height;
  for (Int p = first; p < pixels; ++p) {
    storePixel(out, p, colours[packedValue<bits>(picture.memory, p, p % picture.width)]);
  }
}

#if defined(__x86_64__)
// With AVX2 a step converts eight pixels. At the byte-per-channel depths each 16-byte lane holds
// four source pixels, one byte shuffle places their red, green and blue bytes in four output
// words, and a mask sets alpha; depth 4 looks its nibbles up in the palette.

// The shuffle for four pixels a lane, `size` bytes apart, with red, green and blue at the given
// byte offsets; -1 selects a zero byte, which the alpha mask fills.
template <PixelOrder order>
__attribute__((target("avx2"))) __m256i laneShuffle(int size, int red, int green, int blue) {
  alignas(32) std::int8_t control[32];
  for (int i = 0; i < 8; ++i) {
    const int base = size * (i % 4);
    const int sources[4] = {-1, base + red, base + green, base + blue};
    for (int b = 0; b < 4; ++b) {
      // Bytes A, R, G, B in memory, or the word 0xAARRGGBB stored little-endian as B, G, R, A.
      const int source = order == PixelOrder::AlphaRedGreenBlue ? sources[b] : sources[3 - b];
      control[4 * i + b] = static_cast<std::int8_t>(source);
    }
  }
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(control));
}

template <PixelOrder order>
__attribute__((target("avx2"))) __m256i alphaMask() {
  return _mm256_set1_epi32(order == PixelOrder::AlphaRedGreenBlue ? 0xFF : -0x1000000);
}

__attribute__((target("avx2"))) inline void storeEight(UInt8* out, Int p, __m256i lanes,
                                                       __m256i shuffle, __m256i alpha) {
  const __m256i words = _mm256_or_si256(_mm256_shuffle_epi8(lanes, shuffle), alpha);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * p), words);
}

// Each function converts the leading pixels of the picture and returns how many it did.
template <PixelOrder order>
__attribute__((target("avx2"))) Int greyEightBitsAvx2(const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  const __m256i shuffle = laneShuffle<order>(4, 0, 0, 0), alpha = alphaMask<order>();
  Int p = 0;
  for (; p + 8 <= pixels; p += 8) {
    const __m128i in = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(picture.memory + p));
    storeEight(out, p, _mm256_cvtepu8_epi32(in), shuffle, alpha);
  }
  return p;
}

template <PixelOrder order>
__attribute__((target("avx2"))) Int greySixteenBitsAvx2(const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  const __m256i shuffle = laneShuffle<order>(4, 1, 1, 1), alpha = alphaMask<order>();
  Int p = 0;
  for (; p + 8 <= pixels; p += 8) {
    const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(picture.memory + 2 * p));
    storeEight(out, p, _mm256_cvtepu16_epi32(in), shuffle, alpha);
  }
  return p;
}

template <PixelOrder order>
__attribute__((target("avx2"))) Int trueColourAvx2(const Picture& picture, UInt8* out) {
  const Int bytes = 3 * picture.width * picture.height;
  const __m256i spread = _mm256_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0);
  const __m256i shuffle = laneShuffle<order>(3, 0, 1, 2), alpha = alphaMask<order>();
  Int p = 0;
  // A step loads 32 bytes and uses 24: it runs while the 8 extra bytes are still picture.
  for (; 3 * p + 32 <= bytes; p += 8) {
    const __m256i in = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(picture.memory + 3 * p));
    storeEight(out, p, _mm256_permutevar8x32_epi32(in, spread), shuffle, alpha);
  }
  return p;
}

template <PixelOrder order>
__attribute__((target("avx2"))) Int fourByteAvx2(const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  const __m256i shuffle = laneShuffle<order>(4, 1, 2, 3), alpha = alphaMask<order>();
  Int p = 0;
  for (; p + 8 <= pixels; p += 8) {
    const __m256i in = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(picture.memory + 4 * p));
    storeEight(out, p, in, shuffle, alpha);
  }
  return p;
}

// Depth 4 converts eight pixels, four bytes, a step: every 32-bit lane takes the four bytes and
// shifts its own nibble down, and the nibble picks its palette word from two registers of
// eight words, its bit 3 choosing the register. Rows must start on byte boundaries.
template <PixelOrder order>
__attribute__((target("avx2"))) Int fourBitsAvx2(const Picture& picture, UInt8* out) {
  if (picture.width % 2 != 0) return 0;
  alignas(32) std::uint32_t words[16];
  for (int n = 0; n < 16; ++n) words[n] = paletteWord<order>(n);
  const __m256i low = _mm256_load_si256(reinterpret_cast<const __m256i*>(words));
  const __m256i high = _mm256_load_si256(reinterpret_cast<const __m256i*>(words + 8));
  // The four bytes load little-endian: pixel 0 is the high nibble of the lowest byte.
  const __m256i shifts = _mm256_setr_epi32(4, 0, 12, 8, 20, 16, 28, 24);
  const __m256i nibble = _mm256_set1_epi32(15);
  const Int pixels = picture.width * picture.height;
  Int p = 0;
  for (; p + 8 <= pixels; p += 8) {
    std::int32_t four;
    std::memcpy(&four, picture.memory + p / 2, 4);
    const __m256i values =
        _mm256_and_si256(_mm256_srlv_epi32(_mm256_set1_epi32(four), shifts), nibble);
    const __m256 fromLow = _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(low, values));
    const __m256 fromHigh = _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(high, values));
    const __m256 highChosen = _mm256_castsi256_ps(_mm256_slli_epi32(values, 28));
    const __m256i chosen = _mm256_castps_si256(_mm256_blendv_ps(fromLow, fromHigh, highChosen));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * p), chosen);
  }
  return p;
}
#endif

// The number of leading pixels that a vector path converted (0 without one).
template <PixelOrder order>
Int composeVectorised([[maybe_unused]] const Picture& picture, [[maybe_unused]] UInt8* out) {
#if defined(__x86_64__)
  if (!hasAvx2()) return 0;
  switch (picture.depth) {
    case 4:
      return fourBitsAvx2<order>(picture, out);
    case 8:
      return greyEightBitsAvx2<order>(picture, out);
    case 16:
      return greySixteenBitsAvx2<order>(picture, out);
    case 24:
      return trueColourAvx2<order>(picture, out);
    case 32:
      return fourByteAvx2<order>(picture, out);
    default:
      return 0;
  }
#else
  return 0;
#endif
}

// The grey level of pixel p: one byte a pixel at depth 8, the second of two bytes at depth 16.
template <PixelOrder order, Int stride, Int offset>
std::uint32_t greyPixel(const UInt8* memory, Int p) {
  return greyWord<order>(memory[p * stride + offset]);
}

// Red, green, blue of pixel p: three bytes a pixel at depth 24, the last three of four at depth
// 32 (whose first byte, alpha in memory, is ignored).
template <PixelOrder order, Int stride, Int offset>
std::uint32_t colourPixel(const UInt8* memory, Int p) {
  const UInt8* pixel = memory + stride * p + offset;
  return pixelWord<order>(pixel[0], pixel[1], pixel[2]);
}

// Grey levels from pixel `first` on.
template <PixelOrder order, Int stride, Int offset>
void composeGrey(Int first, const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  for (Int p = first; p < pixels; ++p) {
    storePixel(out, p, greyPixel<order, stride, offset>(picture.memory, p));
  }
}

// Red, green, blue from pixel `first` on.
template <PixelOrder order, Int stride, Int offset>
void composeColour(Int first, const Picture& picture, UInt8* out) {
  const Int pixels = picture.width * picture.height;
  for (Int p = first; p < pixels; ++p) {
    storePixel(out, p, colourPixel<order, stride, offset>(picture.memory, p));
  }
}

// Pixel (x, y) alone, converted as the whole picture converts it.
template <PixelOrder order>
std::uint32_t composedPixel(const Picture& picture, Int x, Int y) {
  const Int p = y * picture.width + x;
  switch (picture.depth) {
    case 1:
      return paletteWord<order>(packedColourNumber<1>(packedValue<1>(picture.memory, p, x)));
    case 4:
      return paletteWord<order>(packedColourNumber<4>(packedValue<4>(picture.memory, p, x)));
    case 8:
      return greyPixel<order, 1, 0>(picture.memory, p);
    case 16:
      return greyPixel<order, 2, 1>(picture.memory, p);
    case 24:
      return colourPixel<order, 3, 0>(picture.memory, p);
    default:
      return colourPixel<order, 4, 1>(picture.memory, p);
  }
}

template <PixelOrder order>
void compose(const Picture& picture, UInt8* out) {
  switch (picture.depth) {
    case 1:
      composePacked<order, 1>(0, picture, out);
      break;
    case 4:
      composePacked<order, 4>(composeVectorised<order>(picture, out), picture, out);
      break;
    case 8:
      composeGrey<order, 1, 0>(composeVectorised<order>(picture, out), picture, out);
      break;
    case 16:
      composeGrey<order, 2, 1>(composeVectorised<order>(picture, out), picture, out);
      break;
    case 24:
      composeColour<order, 3, 0>(composeVectorised<order>(picture, out), picture, out);
      break;
    default:
      composeColour<order, 4, 1>(composeVectorised<order>(picture, out), picture, out);
      break;
  }
}

// The bytes that composing reads: every byte that a pixel's address formula reaches.
Int bytesRead(Int width, Int height, Int depth) {
  const Int pixels = width * height;
  if (depth == 1) return (pixels + 7) / 8;
  if (depth == 4) return (pixels + 1) / 2;
  return pixels * (depth / 8);
}

// Whether every byte read lies inside the window's block of the video memory.
bool pictureFits(const t_Window& record, Int width, Int height, Int depth) {
  const Int start = record.MemoryStart;
  const Int last = start + bytesRead(width, height, depth) - 1;
  return start >= 0 && last <= record.MemoryEnd && last < static_cast<Int>(VideoMemory.size());
}

void logNotCollected() {
  logLine("t_WindowImage: Data could not be collected, image could not be created.");
}

bool pictureSized(Int width, Int height) {
  return width >= 1 && height >= 1 && width <= LargestPictureSide && height <= LargestPictureSide;
}

// Why pictureOf found no picture: a picture of a good size at a depth that is none has one line
// for every pixel that could not be converted; every other case one line.
void logNoPicture(const t_Window& record) {
  const Int width = record.Width, height = record.Height;
  if (pictureSized(width, height) && !isSupportedDepth(record.BitDepth)) {
    for (Int p = 0; p < width * height; ++p) logLine("t_WindowImage: Illegal bit depth.");
    return;
  }
  logNotCollected();
}

// The picture of a window that may be shown, or nothing after the due message.
std::optional<Picture> pictureToShow(UInt8 window) {
  if (!MemoryInitialized) return std::nullopt;
  if (window >= GraphicWindowCount || !Windows[window].Initialized) {
    logLine("t_WindowImage: Graphic window #", window, " not initialized.");
    return std::nullopt;
  }
  const t_Window& record = Windows[window];
  if (!record.Visible) return std::nullopt;
  const std::optional<Picture> picture = pictureOf(record);
  if (!picture) logNoPicture(record);
  return picture;
}

Int microseconds(double seconds) {
  return static_cast<Int>(seconds * 1000000.0);
}

void composeInOrder(const Picture& picture, UInt8* out, PixelOrder order) {
  if (order == PixelOrder::NativeArgb32) {
    compose<PixelOrder::NativeArgb32>(picture, out);
  } else {
    compose<PixelOrder::AlphaRedGreenBlue>(picture, out);
  }
}

void recordStatistics(UInt8 window, double started) {
  t_Window& record = Windows[window];
  record.UpdateDuration = microseconds(host().absoluteTime()) - microseconds(started);
  record.UpdateFinished = absoluteMilliseconds();
}

std::size_t imageBytes(const Picture& picture) {
  return static_cast<std::size_t>(picture.width * picture.height * 4);
}

}  // namespace

std::optional<Picture> pictureOf(const t_Window& record) {
  const Int width = record.Width, height = record.Height, depth = record.BitDepth;
  if (!pictureSized(width, height) || !isSupportedDepth(depth) ||
      !pictureFits(record, width, height, depth)) {
    return std::nullopt;
  }
  return Picture{VideoMemory.data() + record.MemoryStart, width, height, depth};
}

std::uint32_t shownColour(const Picture& picture, Int x, Int y) {
  return composedPixel<PixelOrder::NativeArgb32>(picture, x, y) & 0xFFFFFF;
}

// At the depths of whole bytes a piece of a row is a picture of its own, one row high; at
// depths 1 and 4 a piece may begin inside a byte, and goes pixel by pixel.
void composeRow(const Picture& picture, Int x, Int y, Int count, UInt8* out) {
  constexpr PixelOrder order = PixelOrder::AlphaRedGreenBlue;
  if (picture.depth >= 8) {
    const Int first = (y * picture.width + x) * (picture.depth / 8);
    compose<order>(Picture{picture.memory + first, count, 1, picture.depth}, out);
    return;
  }
  for (Int i = 0; i < count; ++i) storePixel(out, i, composedPixel<order>(picture, x + i, y));
}

bool t_WindowImageInto(UInt8 window, UInt8* pixels, std::size_t byteCount, PixelOrder order) {
  const std::optional<Picture> picture = pictureToShow(window);
  if (!picture) return false;
  const double started = host().absoluteTime();
  if (pixels == nullptr || byteCount < imageBytes(*picture)) {
    logNotCollected();
    return false;
  }
  composeInOrder(*picture, pixels, order);
  recordStatistics(window, started);
  return true;
}

std::optional<t_Image> t_WindowImage(UInt8 window) {
  const std::optional<Picture> picture = pictureToShow(window);
  if (!picture) return std::nullopt;
  const double started = host().absoluteTime();
  t_Image image{picture->width, picture->height, std::vector<UInt8>(imageBytes(*picture))};
  composeInOrder(*picture, image.Pixels.data(), PixelOrder::AlphaRedGreenBlue);
  recordStatistics(window, started);
  return image;
}

}  // namespace rvtools
