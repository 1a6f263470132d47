// SPDX-License-Identifier: MIT
// Pixel graphics: a pen of each window's own, and points, lines, rectangles, circles, region
// fills, text and images drawn with it straight into the window's graphic memory, and pixels
// and rectangles read back. The pen lands as a fully inked glyph pixel of its colour would
// (text/shades.hpp), and what is read comes from the composition (display/composition.hpp), so
// that drawings, text and t_WindowImage agree at every depth. Every shape is cut to the picture
// arithmetically before a pixel is drawn, so that coordinates near the ends of the Int range cost
// no more than the pixels inside. Runs of pixels are written and compared in blocks of 96 bytes
// (32 at a time with AVX2), then in chunks of 8 or 24 bytes, and a fill reads and writes each
// run in one pass. The text cells whose pixels change are marked (runtime/pixel_drawings.hpp);
// text memory is left alone.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "display/composition.hpp"
#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "runtime/pixel_drawings.hpp"
#include "runtime/processor.hpp"
#include "rvtools/display.hpp"
#include "rvtools/runtime.hpp"
#include "text/printed_codes.hpp"
#include "text/shades.hpp"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace rvtools {
namespace {

// Coordinates and the products of the line and the circle, which leave the Int range.
using Wide = __int128;
using UWide = unsigned __int128;

constexpr Int UncompressedGrey = 2;

Wide absolute(Wide value) {
  return value < 0 ? -value : value;
}

// ---------------------------------------------------------------------------------------------
// Pixels in memory

// Pixel p (= y x width + x) of a picture at `Depth` bits, by its stored value: the bits that
// tell it from another pixel. That is the bit, the nibble, the grey byte (at depth 16 the second
// of the pixel's two bytes, which the pen writes), or red, green and blue as 0xRRGGBB (at depth
// 32 the bytes after alpha). Runs of pixels go a chunk at a time: a 64-bit word, or three at
// depth 24, so that every chunk begins on a pixel.
template <int Bits>
struct Layout {
  static constexpr Int Depth = Bits;
  static constexpr Int ChunkWords = Depth == 24 ? 3 : 1;
  static constexpr Int ChunkPixels = 64 * ChunkWords / Depth;
  static constexpr std::uint32_t LargestValue = Depth == 1    ? 1
                                                : Depth == 4  ? 15
                                                : Depth <= 16 ? 255
                                                              : 0xFFFFFF;
  using Chunk = std::array<std::uint64_t, ChunkWords>;

  static std::uint32_t valueOf(const Shade& shade) {
    if constexpr (Depth == 1) return shade.bit;
    if constexpr (Depth == 4) return shade.nibble;
    if constexpr (Depth == 8 || Depth == 16) return shade.grey;
    return std::uint32_t{shade.red} << 16 | std::uint32_t{shade.green} << 8 | shade.blue;
  }

  static std::uint32_t read(const UInt8* memory, Int p) {
    if constexpr (Depth == 1) {
      return (memory[p / 8] >> (7 - p % 8)) & 1;
    } else if constexpr (Depth == 4) {
      return p % 2 == 0 ? memory[p / 2] >> 4 : memory[p / 2] & 15;
    } else if constexpr (Depth == 8) {
      return memory[p];
    } else if constexpr (Depth == 16) {
      return memory[2 * p + 1];
    } else {
      const UInt8* pixel = memory + Depth / 8 * p + (Depth == 32 ? 1 : 0);
      return std::uint32_t{pixel[0]} << 16 | std::uint32_t{pixel[1]} << 8 | pixel[2];
    }
  }

  static void write(UInt8* memory, Int p, std::uint32_t value) {
    if constexpr (Depth == 1) {
      const auto bit = static_cast<UInt8>(0x80 >> (p % 8));
      UInt8& byte = memory[p / 8];
      byte = static_cast<UInt8>(value != 0 ? byte | bit : byte & ~bit);
    } else if constexpr (Depth == 4) {
      UInt8& byte = memory[p / 2];
      byte = static_cast<UInt8>(p % 2 == 0 ? (byte & 0x0F) | value << 4 : (byte & 0xF0) | value);
    } else if constexpr (Depth == 8) {
      memory[p] = static_cast<UInt8>(value);
    } else if constexpr (Depth == 16) {
      memory[2 * p + 1] = static_cast<UInt8>(value);
    } else {
      UInt8* pixel = memory + Depth / 8 * p + (Depth == 32 ? 1 : 0);
      pixel[0] = static_cast<UInt8>(value >> 16);
      pixel[1] = static_cast<UInt8>(value >> 8);
      pixel[2] = static_cast<UInt8>(value);
    }
  }

  // A chunk whose every pixel holds `value`, with the bytes the value leaves alone 0.
  static Chunk chunkOf(std::uint32_t value) {
    UInt8 bytes[8 * ChunkWords] = {};
    for (Int p = 0; p < ChunkPixels; ++p) write(bytes, p, value);
    Chunk chunk;
    std::memcpy(chunk.data(), bytes, sizeof bytes);
    return chunk;
  }

  // Whether the chunk at pixel p (a multiple of ChunkPixels) holds `pattern` where `mask` is set.
  static bool chunkHolds(const UInt8* memory, Int p, const Chunk& pattern, const Chunk& mask) {
    const UInt8* at = memory + p * Depth / 8;
    for (Int w = 0; w < ChunkWords; ++w) {
      std::uint64_t word;
      std::memcpy(&word, at + 8 * w, 8);
      if ((word & mask[w]) != pattern[w]) return false;
    }
    return true;
  }

  // Writes `pattern` into `chunks` chunks from pixel p on (a multiple of ChunkPixels). Depths of
  // a byte or less repeat one byte, depth 24 writes every byte, and depths 16 and 32 keep the
  // bytes outside `mask`.
  static void writeChunks(UInt8* memory, Int p, Int chunks, const Chunk& pattern,
                          const Chunk& mask) {
    UInt8* at = memory + p * Depth / 8;
    if constexpr (Depth <= 8) {
      std::memset(at, static_cast<UInt8>(pattern[0]), static_cast<std::size_t>(8 * chunks));
    } else if constexpr (Depth == 24) {
      for (Int c = 0; c < chunks; ++c) std::memcpy(at + 24 * c, pattern.data(), 24);
    } else {
      for (Int c = 0; c < chunks; ++c) {
        std::uint64_t word;
        std::memcpy(&word, at + 8 * c, 8);
        word = (word & ~mask[0]) | pattern[0];
        std::memcpy(at + 8 * c, &word, 8);
      }
    }
  }
};

template <typename L>
const typename L::Chunk& valueMask() {
  static const typename L::Chunk mask = L::chunkOf(L::LargestValue);
  return mask;
}

// ---------------------------------------------------------------------------------------------
// Long runs, 96 bytes at a time

// 96 bytes of a run whose pixels all hold one value (96 is a multiple of every chunk's size),
// and the bits of them that hold pixel values: the others are kept when the block is written and
// ignored when it is compared. `whole` when every bit holds a value.
struct Block {
  static constexpr Int Bytes = 96;
  alignas(32) UInt8 pattern[Bytes];
  alignas(32) UInt8 mask[Bytes];
  bool whole;
};

// The block operations: writing a block's pattern into `blocks` blocks from `at` on, and
// replacing one pattern by another in the leading blocks that hold it, which returns how many
// did. Portably a 64-bit word at a time, with AVX2 32 bytes.
void writeBlocksPortable(UInt8* at, Int blocks, const Block& block) {
  for (Int b = 0; b < blocks; ++b, at += Block::Bytes) {
    for (Int w = 0; w < Block::Bytes; w += 8) {
      std::uint64_t word, pattern, mask;
      std::memcpy(&word, at + w, 8);
      std::memcpy(&pattern, block.pattern + w, 8);
      std::memcpy(&mask, block.mask + w, 8);
      word = (word & ~mask) | pattern;
      std::memcpy(at + w, &word, 8);
    }
  }
}

Int replaceBlocksPortable(UInt8* at, Int blocks, const Block& from, const Block& to) {
  for (Int b = 0; b < blocks; ++b, at += Block::Bytes) {
    std::uint64_t words[Block::Bytes / 8];
    std::memcpy(words, at, Block::Bytes);
    for (Int w = 0; w < Block::Bytes / 8; ++w) {
      std::uint64_t pattern, mask;
      std::memcpy(&pattern, from.pattern + 8 * w, 8);
      std::memcpy(&mask, from.mask + 8 * w, 8);
      if ((words[w] & mask) != pattern) return b;
    }
    writeBlocksPortable(at, 1, to);
  }
  return blocks;
}

#if defined(__x86_64__)
// The three 32-byte lanes of a block's pattern and of its mask.
struct BlockLanes {
  __m256i pattern[3], mask[3];
};

__attribute__((target("avx2"))) BlockLanes lanesOf(const Block& block) {
  BlockLanes lanes;
  for (int k = 0; k < 3; ++k) {
    lanes.pattern[k] = _mm256_load_si256(reinterpret_cast<const __m256i*>(block.pattern + 32 * k));
    lanes.mask[k] = _mm256_load_si256(reinterpret_cast<const __m256i*>(block.mask + 32 * k));
  }
  return lanes;
}

// Writes the lanes into the block at `at`: whole, or keeping the bits outside the mask.
template <bool whole>
__attribute__((target("avx2"), always_inline)) inline void storeLanes(UInt8* at,
                                                                      const BlockLanes& lanes) {
  for (int k = 0; k < 3; ++k) {
    auto* out = reinterpret_cast<__m256i*>(at + 32 * k);
    __m256i bytes = lanes.pattern[k];
    if constexpr (!whole) {
      bytes = _mm256_or_si256(_mm256_andnot_si256(lanes.mask[k], _mm256_loadu_si256(out)), bytes);
    }
    _mm256_storeu_si256(out, bytes);
  }
}

template <bool whole>
__attribute__((target("avx2"))) void writeLanes(UInt8* at, Int blocks, const BlockLanes& lanes) {
  for (Int b = 0; b < blocks; ++b, at += Block::Bytes) storeLanes<whole>(at, lanes);
}

__attribute__((target("avx2"))) void writeBlocksAvx2(UInt8* at, Int blocks, const Block& block) {
  const BlockLanes lanes = lanesOf(block);
  if (block.whole) {
    writeLanes<true>(at, blocks, lanes);
  } else {
    writeLanes<false>(at, blocks, lanes);
  }
}

template <bool whole>
__attribute__((target("avx2"))) Int replaceLanes(UInt8* at, Int blocks, const BlockLanes& from,
                                                 const BlockLanes& to) {
  for (Int b = 0; b < blocks; ++b, at += Block::Bytes) {
    __m256i differences = _mm256_setzero_si256();
    for (int k = 0; k < 3; ++k) {
      const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at + 32 * k));
      const __m256i different = _mm256_xor_si256(bytes, from.pattern[k]);
      differences = _mm256_or_si256(differences, _mm256_and_si256(different, from.mask[k]));
    }
    if (!_mm256_testz_si256(differences, differences)) return b;
    storeLanes<whole>(at, to);
  }
  return blocks;
}

__attribute__((target("avx2"))) Int replaceBlocksAvx2(UInt8* at, Int blocks, const Block& from,
                                                      const Block& to) {
  const BlockLanes fromLanes = lanesOf(from), toLanes = lanesOf(to);
  return to.whole ? replaceLanes<true>(at, blocks, fromLanes, toLanes)
                  : replaceLanes<false>(at, blocks, fromLanes, toLanes);
}
#endif

void writeBlocks(UInt8* at, Int blocks, const Block& block) {
#if defined(__x86_64__)
  if (hasAvx2()) return writeBlocksAvx2(at, blocks, block);
#endif
  writeBlocksPortable(at, blocks, block);
}

Int replaceBlocks(UInt8* at, Int blocks, const Block& from, const Block& to) {
#if defined(__x86_64__)
  if (hasAvx2()) return replaceBlocksAvx2(at, blocks, from, to);
#endif
  return replaceBlocksPortable(at, blocks, from, to);
}

// ---------------------------------------------------------------------------------------------
// Runs of pixels

// A pixel value with its chunk and block, made once for the runs of an operation.
template <typename L>
struct Runs {
  static constexpr Int BlockPixels = Block::Bytes * 8 / L::Depth;

  explicit Runs(std::uint32_t stored) : value(stored), chunk(L::chunkOf(stored)) {
    const typename L::Chunk& mask = valueMask<L>();
    constexpr Int chunkBytes = 8 * L::ChunkWords;
    for (Int at = 0; at < Block::Bytes; at += chunkBytes) {
      std::memcpy(block.pattern + at, chunk.data(), chunkBytes);
      std::memcpy(block.mask + at, mask.data(), chunkBytes);
    }
    block.whole = std::all_of(std::begin(block.mask), std::end(block.mask),
                              [](UInt8 bits) { return bits == 0xFF; });
  }

  std::uint32_t value;
  typename L::Chunk chunk;
  Block block;
};

// Writes the value into the `count` pixels from p on: pixel by pixel up to a chunk, blocks,
// chunks, and pixel by pixel again. A value of whole bytes is a memset.
template <typename L>
void fillRun(UInt8* memory, Int p, Int count, const Runs<L>& runs) {
  const Int end = p + count;
  for (; p < end && p % L::ChunkPixels != 0; ++p) L::write(memory, p, runs.value);
  if constexpr (L::Depth > 8) {
    const Int blocks = (end - p) / Runs<L>::BlockPixels;
    writeBlocks(memory + p * L::Depth / 8, blocks, runs.block);
    p += blocks * Runs<L>::BlockPixels;
  }
  const Int chunks = (end - p) / L::ChunkPixels;
  L::writeChunks(memory, p, chunks, runs.chunk, valueMask<L>());
  for (p += chunks * L::ChunkPixels; p < end; ++p) L::write(memory, p, runs.value);
}

// Writes `to` into the pixels p, p + 1, ... (at most `count`) that hold `from`, one after the
// other, and returns how many did: a pass that reads each pixel once and writes it at once.
template <typename L>
Int replaceAfter(UInt8* memory, Int p, Int count, const Runs<L>& from, const Runs<L>& to) {
  Int n = 0;
  for (; n < count && (p + n) % L::ChunkPixels != 0; ++n) {
    if (L::read(memory, p + n) != from.value) return n;
    L::write(memory, p + n, to.value);
  }
  const Int blocks = (count - n) / Runs<L>::BlockPixels;
  UInt8* at = memory + (p + n) * L::Depth / 8;
  n += replaceBlocks(at, blocks, from.block, to.block) * Runs<L>::BlockPixels;
  for (; n + L::ChunkPixels <= count && L::chunkHolds(memory, p + n, from.chunk, valueMask<L>());
       n += L::ChunkPixels) {
    L::writeChunks(memory, p + n, 1, to.chunk, valueMask<L>());
  }
  for (; n < count && L::read(memory, p + n) == from.value; ++n) L::write(memory, p + n, to.value);
  return n;
}

// The same for the pixels p, p - 1, ...
template <typename L>
Int replaceBefore(UInt8* memory, Int p, Int count, const Runs<L>& from, const Runs<L>& to) {
  Int n = 0;
  for (; n < count && (p - n + 1) % L::ChunkPixels != 0; ++n) {
    if (L::read(memory, p - n) != from.value) return n;
    L::write(memory, p - n, to.value);
  }
  for (; n + L::ChunkPixels <= count &&
         L::chunkHolds(memory, p - n + 1 - L::ChunkPixels, from.chunk, valueMask<L>());
       n += L::ChunkPixels) {
    L::writeChunks(memory, p - n + 1 - L::ChunkPixels, 1, to.chunk, valueMask<L>());
  }
  for (; n < count && L::read(memory, p - n) == from.value; ++n) L::write(memory, p - n, to.value);
  return n;
}

// Runs `work` with the Layout of the picture's depth, one of the six.
template <typename Work>
void onLayout(Int depth, Work&& work) {
  switch (depth) {
    case 1:
      return work(Layout<1>{});
    case 4:
      return work(Layout<4>{});
    case 8:
      return work(Layout<8>{});
    case 16:
      return work(Layout<16>{});
    case 24:
      return work(Layout<24>{});
    default:
      return work(Layout<32>{});
  }
}

// ---------------------------------------------------------------------------------------------
// Drawing on a window

// The picture that a pixel operation may draw on; nothing, after the entry check's log line
// where there is one, when the window has none. At depths 1 and 4 every row must begin on a
// byte, as t_InitWindow makes the width.
std::optional<Picture> drawablePicture(std::string_view operation, UInt8 window) {
  const t_Window* record = checkedWindow(operation, window);
  if (record == nullptr) return std::nullopt;
  const std::optional<Picture> picture = pictureOf(*record);
  if (!picture || picture->width * picture->depth % 8 != 0) return std::nullopt;
  return picture;
}

// One operation drawing on one window: its picture, its pen, the text cells it marks, and the
// picture version, advanced once at its end when it wrote a pixel.
struct Canvas {
  Canvas(UInt8 number, const Picture& drawn)
      : window(number),
        picture(drawn),
        pen(penOf(number)),
        marks(number, drawn.width, drawn.height, Windows[number].Font.Width,
              Windows[number].Font.Height) {}
  ~Canvas() {
    if (changed) markPictureChanged(window);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  Int width() const { return picture.width; }
  Int height() const { return picture.height; }

  const UInt8 window;
  const Picture picture;
  const t_RGBColor pen;
  PixelCellMarks marks;
  bool changed = false;
};

// The pen as the window's depth stores it.
template <typename L>
std::uint32_t penValue(const Canvas& canvas) {
  return L::valueOf(glyphShade(canvas.pen, canvas.pen, FullInk));
}

// Pixels firstX..lastX of row y, all inside the picture.
template <typename L>
void fillSpan(Canvas& canvas, Int y, Int firstX, Int lastX, const Runs<L>& runs) {
  fillRun<L>(canvas.picture.memory, y * canvas.width() + firstX, lastX - firstX + 1, runs);
  canvas.marks.markRun(firstX, lastX, y);
  canvas.changed = true;
}

// Pixels firstX..lastX of rows firstY..lastY, all inside the picture. Rows as wide as the
// picture lie end to end in memory and are written as one run.
template <typename L>
void fillRectangle(Canvas& canvas, Int firstX, Int lastX, Int firstY, Int lastY,
                   const Runs<L>& runs) {
  const Int width = canvas.width();
  if (firstX == 0 && lastX == width - 1) {
    fillRun<L>(canvas.picture.memory, firstY * width, (lastY - firstY + 1) * width, runs);
  } else {
    for (Int y = firstY; y <= lastY; ++y) {
      fillRun<L>(canvas.picture.memory, y * width + firstX, lastX - firstX + 1, runs);
    }
  }
  canvas.marks.markRectangle(firstX, lastX, firstY, lastY);
  canvas.changed = true;
}

template <typename L>
void plotPixel(Canvas& canvas, Int x, Int y, std::uint32_t value) {
  L::write(canvas.picture.memory, y * canvas.width() + x, value);
  canvas.marks.mark(x, y);
  canvas.changed = true;
}

// An inclusive range of pixels along one axis.
struct Range {
  Int first, last;
};

// first..last cut to 0..size - 1; nothing when no pixel is left.
std::optional<Range> cutTo(Wide first, Wide last, Int size) {
  first = std::max<Wide>(first, 0);
  last = std::min<Wide>(last, size - 1);
  if (first > last) return std::nullopt;
  return Range{static_cast<Int>(first), static_cast<Int>(last)};
}

bool inside(const Picture& picture, Int x, Int y) {
  return x >= 0 && y >= 0 && x < picture.width && y < picture.height;
}

// ---------------------------------------------------------------------------------------------
// Lines

// Bresenham's line takes `major` steps along its longer axis and `minor` along the other
// (minor <= major). Step i lies k(i) = floor((2 i minor + major - 1) / (2 major)) minor steps
// from its start: i x minor / major rounded to the nearest whole number, a half down. These
// functions find the steps where k reaches a value, so that a line cut to the picture starts
// where its pixels enter it, as if it had been walked from its start. Every product stays below
// 2^128, since major and minor stay below 2^64.
struct Slope {
  UWide major, minor;
};

// The first step i with k(i) >= k, for 1 <= k <= minor.
UWide firstStepReaching(const Slope& slope, UWide k) {
  const UWide a = slope.major * (k - 1);
  const UWide q = a / slope.minor, r = a % slope.minor;
  return q + (2 * r + slope.major + 2 * slope.minor) / (2 * slope.minor);
}

// The last step i with k(i) <= k, for 0 <= k < minor.
UWide lastStepWithin(const Slope& slope, UWide k) {
  const UWide a = slope.major * k;
  const UWide q = a / slope.minor, r = a % slope.minor;
  return q + (2 * r + slope.major) / (2 * slope.minor);
}

// k(i), and the error that Bresenham's walk has at step i: 2 i minor + major - 1 - 2 major k(i),
// from 0 to 2 major - 1; for major >= 1.
std::pair<UWide, UWide> stateAtStep(const Slope& slope, UWide i) {
  const UWide a = i * slope.minor;
  const UWide q = a / slope.major, r = a % slope.major;
  const UWide rest = 2 * r + slope.major - 1;
  return {q + rest / (2 * slope.major), rest % (2 * slope.major)};
}

// A line cut to the picture: its first pixel inside, the pixels from there on, and the walk's
// state there. Each step moves one pixel along the major axis (y when `steep`, else x); when the
// error reaches twoMajor it also moves one pixel along the minor axis, by minorSign.
struct LineWalk {
  Int x, y, count;
  bool steep;
  Int minorSign;
  UWide error, twoMinor, twoMajor;
};

// The line from (x1, y1) to (x2, y2) as Bresenham's walk from the end with the lesser major
// coordinate draws it, cut to a picture of width x height; nothing when no pixel is inside.
std::optional<LineWalk> clippedLine(Int x1, Int y1, Int x2, Int y2, Int width, Int height) {
  const bool steep = absolute(Wide{y2} - y1) > absolute(Wide{x2} - x1);
  Wide a1 = steep ? y1 : x1, b1 = steep ? x1 : y1, a2 = steep ? y2 : x2, b2 = steep ? x2 : y2;
  if (a1 > a2) std::swap(a1, a2), std::swap(b1, b2);
  const Int majorSize = steep ? height : width, minorSize = steep ? width : height;
  const Slope slope{static_cast<UWide>(a2 - a1), static_cast<UWide>(absolute(b2 - b1))};
  const Int sign = b2 >= b1 ? 1 : -1;
  const auto major = static_cast<Wide>(slope.major), minor = static_cast<Wide>(slope.minor);
  // The steps i whose major coordinate a1 + i lies inside the picture, and the minor steps k
  // whose minor coordinate b1 + sign x k does.
  Wide first = std::max<Wide>(-a1, 0), last = std::min<Wide>(majorSize - 1 - a1, major);
  const Wide kFirst = std::max<Wide>(sign > 0 ? -b1 : b1 - (minorSize - 1), 0);
  const Wide kLast = std::min<Wide>(sign > 0 ? minorSize - 1 - b1 : b1, minor);
  if (first > last || kFirst > kLast) return std::nullopt;
  if (minor > 0) {
    if (kFirst > 0) first = std::max<Wide>(first, firstStepReaching(slope, kFirst));
    if (kLast < minor) last = std::min<Wide>(last, lastStepWithin(slope, kLast));
  }
  if (first > last) return std::nullopt;
  const auto [k, error] =
      slope.major > 0 ? stateAtStep(slope, first) : std::pair<UWide, UWide>{0, 0};
  const auto a = static_cast<Int>(a1 + first), b = static_cast<Int>(b1 + sign * Wide(k));
  return LineWalk{steep ? b : a,   steep ? a : b,  static_cast<Int>(last - first + 1),
                  steep,           sign,           error,
                  2 * slope.minor, 2 * slope.major};
}

// Walks the cut line with its error in `Error`: Int while the steps are small enough to add
// without overflow, the 128-bit type for lines longer than 2^60 pixels. Its major axis is y when
// `Steep`, else x. The step along the minor axis is taken without a branch, since Bresenham's
// choices follow no pattern that a processor could predict.
template <typename L, typename Error, bool Steep>
void walkLine(Canvas& canvas, const LineWalk& walk, std::uint32_t value) {
  const Int width = canvas.width(), sign = walk.minorSign;
  const Int majorStep = Steep ? width : 1, minorStep = Steep ? sign : sign * width;
  const auto twoMinor = static_cast<Error>(walk.twoMinor);
  const auto twoMajor = static_cast<Error>(walk.twoMajor);
  auto error = static_cast<Error>(walk.error);
  UInt8* memory = canvas.picture.memory;
  PixelMarker marker = canvas.marks.marker();
  Int major = Steep ? walk.y : walk.x, minor = Steep ? walk.x : walk.y;
  Int p = walk.y * width + walk.x;
  for (Int i = 0; i < walk.count; ++i) {
    L::write(memory, p, value);
    marker.mark(Steep ? minor : major, Steep ? major : minor);
    error += twoMinor;
    const Error taken = Error{0} - static_cast<Error>(error >= twoMajor);  // all ones or none
    error -= twoMajor & taken;
    const auto step = static_cast<Int>(taken);
    ++major, minor += sign & step, p += majorStep + (minorStep & step);
  }
  canvas.marks.add(marker);
  canvas.changed = true;
}

template <typename L, typename Error>
void walkLine(Canvas& canvas, const LineWalk& walk, std::uint32_t value) {
  if (walk.steep) {
    walkLine<L, Error, true>(canvas, walk, value);
  } else {
    walkLine<L, Error, false>(canvas, walk, value);
  }
}

// ---------------------------------------------------------------------------------------------
// Circles

// The largest s with s x s <= n, for 0 <= n < 2^127. A double's square root lies within
// s / 2^51 + 1 of the answer, so Newton's steps start just above it and close in from there.
UWide squareRoot(UWide n) {
  if (n < 2) return n;
  const auto estimate = static_cast<UWide>(std::sqrt(static_cast<double>(n)));
  UWide root = estimate + (estimate >> 40) + 2;
  for (UWide next = (root + n / root) / 2; next < root; next = (root + n / root) / 2) root = next;
  return root;
}

// The same for a signed number: -1 when it is negative.
Wide squareRootOrNone(Wide n) {
  return n < 0 ? -1 : static_cast<Wide>(squareRoot(static_cast<UWide>(n)));
}

// The midpoint circle of radius r >= 1 about (0, 0). Its octant from (r, 0) to the diagonal has,
// for each row offset y from 0 to lastRow, the one column offset X(y), the largest X with
// X (X - 1) < r² - y²; the seven other octants mirror it. These are the pixels of the usual
// walk (x = r, y = 0, d = 1 - r; while x >= y: y + 1, and x - 1 where d >= 0), found for a row
// at once, so that only the rows inside the picture cost anything.
struct MidpointCircle {
  explicit MidpointCircle(Wide radius) : squared(radius * radius) {
    lastRow = squareRootOrNone(squared / 2);
    while (2 * lastRow * lastRow - lastRow >= squared) --lastRow;
    while (2 * (lastRow + 1) * (lastRow + 1) - (lastRow + 1) < squared) ++lastRow;
  }

  // X(y), or -1 beyond the octant.
  Wide octantColumn(Wide y) const {
    if (y > lastRow) return -1;
    const Wide n = squared - y * y, s = squareRootOrNone(n);
    return s * (s + 1) < n ? s + 1 : s;
  }

  // The row offsets u of the octant with X(u) = v: the mirrored octant's pixels in row v.
  std::optional<std::pair<Wide, Wide>> mirroredColumns(Wide v) const {
    const Wide first = squareRootOrNone(squared - v * (v + 1) - 1) + 1;
    const Wide last = std::min(squareRootOrNone(squared - v * (v - 1) - 1), lastRow);
    if (first > last) return std::nullopt;
    return std::pair{first, last};
  }

  Wide squared;
  Wide lastRow;
};

// Draws row y of the circle about (cx, cy), v rows from its centre.
template <typename L>
void drawCircleRow(Canvas& canvas, const MidpointCircle& circle, Wide cx, Int y, Wide v,
                   bool filled, const Runs<L>& runs) {
  const Wide column = circle.octantColumn(v);
  const auto mirrored = circle.mirroredColumns(v);
  const auto span = [&](Wide first, Wide last) {
    if (const std::optional<Range> cut = cutTo(first, last, canvas.width())) {
      fillSpan<L>(canvas, y, cut->first, cut->last, runs);
    }
  };
  if (filled) {
    const Wide reach = std::max(column, mirrored ? mirrored->second : Wide{-1});
    if (reach >= 0) span(cx - reach, cx + reach);
    return;
  }
  if (column >= 0) span(cx - column, cx - column), span(cx + column, cx + column);
  if (mirrored) {
    span(cx - mirrored->second, cx - mirrored->first);
    span(cx + mirrored->first, cx + mirrored->second);
  }
}

// ---------------------------------------------------------------------------------------------
// Region fill

// A run of pixels to explore: columns left..right of `row`, next to a run that was filled in
// row - direction.
struct Segment {
  std::int32_t row, left, right, direction;
};

// Fills the 4-connected region of pixels that hold `target` around (x, y) with the pen, a run
// at a time: each run is filled whole, then the rows above and below are explored under it, and
// where a run reaches beyond the run it was found from, the row it came from beyond that. Every
// pixel is filled once and each run pushes at most three segments, so the stack is bounded by
// the picture's size, whatever the region's shape.
template <typename L>
void fillRegion(Canvas& canvas, Int x, Int y, const Runs<L>& target, const Runs<L>& pen) {
  UInt8* memory = canvas.picture.memory;
  const Int width = canvas.width(), height = canvas.height();
  std::vector<Segment> stack;
  const auto push = [&](Int row, Int left, Int right, Int direction) {
    if (row < 0 || row >= height) return;
    stack.push_back({static_cast<std::int32_t>(row), static_cast<std::int32_t>(left),
                     static_cast<std::int32_t>(right), static_cast<std::int32_t>(direction)});
  };
  push(y - 1, x, x, -1);
  push(y, x, x, 1);
  while (!stack.empty()) {
    const Segment segment = stack.back();
    stack.pop_back();
    const Int row = segment.row, direction = segment.direction;
    const Int left = segment.left, right = segment.right, rowStart = row * width;
    for (Int column = left; column <= right;) {
      if (L::read(memory, rowStart + column) != target.value) {
        ++column;
        continue;
      }
      // The run through `column`, which only at the segment's left end may reach further left.
      const Int p = rowStart + column;
      const Int last = column + replaceAfter<L>(memory, p, width - column, target, pen) - 1;
      const Int first =
          column == left ? column - replaceBefore<L>(memory, p - 1, column, target, pen) : column;
      canvas.marks.markRun(first, last, row);
      canvas.changed = true;
      push(row + direction, first, last, direction);
      if (first < left) push(row - direction, first, left - 1, -direction);
      if (last > right) push(row - direction, right + 1, last, -direction);
      column = last + 2;
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Text and images

// The glyph of `code` in the font, or null when the font does not hold it whole.
const UInt8* glyphPixels(const t_Font& font, UInt8 code) {
  if (code < font.Start || code > font.End) return nullptr;
  const Int cellBytes = saturatingProduct(font.Width, font.Height);
  if (cellBytes > static_cast<Int>(font.Data.size()) / (Int{code} + 1)) return nullptr;
  return font.Data.data() + code * cellBytes;
}

t_RGBColor colourOf(std::uint32_t rgb) {
  return {255, static_cast<UInt8>(rgb >> 16), static_cast<UInt8>(rgb >> 8),
          static_cast<UInt8>(rgb)};
}

// Draws the ink of a glyph with its top left at (left, top): each pixel of the glyph with any
// ink mixes the pen into the colour the picture shows there, as t_PrintSymbol mixes ink into
// paper, so that text drawn on a plain colour looks as printed text on that paper.
template <typename L>
void drawGlyphInk(Canvas& canvas, const t_Font& font, const UInt8* glyph, Wide left, Wide top,
                  std::uint32_t penStored) {
  const std::optional<Range> rows = cutTo(top, top + font.Height - 1, canvas.height());
  const std::optional<Range> columns = cutTo(left, left + font.Width - 1, canvas.width());
  if (!rows || !columns) return;
  for (Int y = rows->first; y <= rows->last; ++y) {
    const UInt8* greys = glyph + (y - top) * font.Width;
    for (Int x = columns->first; x <= columns->last; ++x) {
      const int grey = greys[x - left];
      if (grey == 0) continue;
      const std::uint32_t value =
          grey == FullInk ? penStored
                          : L::valueOf(glyphShade(
                                canvas.pen, colourOf(shownColour(canvas.picture, x, y)), grey));
      plotPixel<L>(canvas, x, y, value);
    }
  }
}

// The rectangle of an image of width x height placed at (x, y), cut to the picture.
struct Placement {
  Range rows, columns;
};

std::optional<Placement> placed(const Picture& picture, Int x, Int y, Int width, Int height) {
  if (width <= 0 || height <= 0) return std::nullopt;
  const std::optional<Range> rows = cutTo(y, Wide{y} + height - 1, picture.height);
  const std::optional<Range> columns = cutTo(x, Wide{x} + width - 1, picture.width);
  if (!rows || !columns) return std::nullopt;
  return Placement{*rows, *columns};
}

bool wellFormed(const t_Image& image) {
  return image.Width >= 0 && image.Height >= 0 &&
         Wide{image.Width} * image.Height * 4 == static_cast<Wide>(image.Pixels.size());
}

// Draws the pixels of image row `row` with alpha other than 0, as runs, each pixel as the pen
// of its colour would land; consecutive pixels of one colour are converted once.
template <typename L>
void putRow(Canvas& canvas, const UInt8* row, Int y, Range columns) {
  std::uint32_t lastArgb = 0, lastValue = 0;
  bool converted = false;
  UInt8* memory = canvas.picture.memory;
  for (Int x = columns.first; x <= columns.last;) {
    if (row[4 * (x - columns.first)] == 0) {
      ++x;
      continue;
    }
    const Int first = x;
    for (; x <= columns.last && row[4 * (x - columns.first)] != 0; ++x) {
      const UInt8* pixel = row + 4 * (x - columns.first);
      std::uint32_t argb;
      std::memcpy(&argb, pixel, 4);
      if (!converted || argb != lastArgb) {
        const t_RGBColor colour{255, pixel[1], pixel[2], pixel[3]};
        lastValue = L::valueOf(glyphShade(colour, colour, FullInk));
        lastArgb = argb, converted = true;
      }
      L::write(memory, y * canvas.width() + x, lastValue);
    }
    canvas.marks.markRun(first, x - 1, y);
    canvas.changed = true;
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// The pen

void t_HColor(UInt8 window, Int color) {
  if (checkedWindow("t_HColor", window) != nullptr) setPen(window, PaletteColor(color));
}

void t_HColorRGB(UInt8 window, Int red, Int green, Int blue) {
  if (checkedWindow("t_HColorRGB", window) == nullptr) return;
  const auto part = [](Int value) { return static_cast<UInt8>(std::clamp<Int>(value, 0, 255)); };
  setPen(window, {255, part(red), part(green), part(blue)});
}

// ---------------------------------------------------------------------------------------------
// Drawing

void t_HPlot(UInt8 window, Int x, Int y) {
  const std::optional<Picture> picture = drawablePicture("t_HPlot", window);
  if (!picture || !inside(*picture, x, y)) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    plotPixel<L>(canvas, x, y, penValue<L>(canvas));
  });
}

void t_HLine(UInt8 window, Int x1, Int y1, Int x2, Int y2) {
  const std::optional<Picture> picture = drawablePicture("t_HLine", window);
  if (!picture) return;
  const std::optional<LineWalk> walk = clippedLine(x1, y1, x2, y2, picture->width, picture->height);
  if (!walk) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    if (walk->twoMajor < (UWide{1} << 61)) {
      walkLine<L, Int>(canvas, *walk, penValue<L>(canvas));
    } else {
      walkLine<L, UWide>(canvas, *walk, penValue<L>(canvas));
    }
  });
}

void t_HRect(UInt8 window, Int x1, Int y1, Int x2, Int y2, bool filled) {
  const std::optional<Picture> picture = drawablePicture("t_HRect", window);
  if (!picture) return;
  const Int left = std::min(x1, x2), right = std::max(x1, x2);
  const Int top = std::min(y1, y2), bottom = std::max(y1, y2);
  const std::optional<Range> columns = cutTo(left, right, picture->width);
  const std::optional<Range> rows = cutTo(top, bottom, picture->height);
  if (!columns || !rows) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    const Runs<L> pen(penValue<L>(canvas));
    if (filled) {
      fillRectangle<L>(canvas, columns->first, columns->last, rows->first, rows->last, pen);
      return;
    }
    // The top and bottom edges whole, the sides between them; an edge outside is cut away.
    if (top == rows->first) fillSpan<L>(canvas, top, columns->first, columns->last, pen);
    if (bottom == rows->last && bottom != top) {
      fillSpan<L>(canvas, bottom, columns->first, columns->last, pen);
    }
    const std::optional<Range> sides = cutTo(Wide{top} + 1, Wide{bottom} - 1, picture->height);
    if (!sides) return;
    if (left == columns->first) {
      fillRectangle<L>(canvas, left, left, sides->first, sides->last, pen);
    }
    if (right == columns->last && right != left) {
      fillRectangle<L>(canvas, right, right, sides->first, sides->last, pen);
    }
  });
}

void t_HCircle(UInt8 window, Int x, Int y, Int radius, bool filled) {
  const std::optional<Picture> picture = drawablePicture("t_HCircle", window);
  if (!picture || radius < 0) return;
  const std::optional<Range> rows = cutTo(Wide{y} - radius, Wide{y} + radius, picture->height);
  if (!rows) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    const Runs<L> pen(penValue<L>(canvas));
    if (radius == 0) {
      if (inside(*picture, x, y)) plotPixel<L>(canvas, x, y, pen.value);
      return;
    }
    const MidpointCircle circle(radius);
    for (Int row = rows->first; row <= rows->last; ++row) {
      drawCircleRow<L>(canvas, circle, x, row, absolute(Wide{row} - y), filled, pen);
    }
  });
}

void t_HFill(UInt8 window, Int x, Int y) {
  const std::optional<Picture> picture = drawablePicture("t_HFill", window);
  if (!picture || !inside(*picture, x, y)) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    const std::uint32_t value = penValue<L>(canvas);
    const std::uint32_t target = L::read(picture->memory, y * picture->width + x);
    if (target != value) fillRegion<L>(canvas, x, y, Runs<L>(target), Runs<L>(value));
  });
}

// ---------------------------------------------------------------------------------------------
// Reading

Int t_HPixel(UInt8 window, Int x, Int y) {
  const t_Window* record = checkedWindow("t_HPixel", window);
  if (record == nullptr) return -1;
  const std::optional<Picture> picture = pictureOf(*record);
  if (!picture || !inside(*picture, x, y)) return -1;
  return shownColour(*picture, x, y);
}

// ---------------------------------------------------------------------------------------------
// Text and images

void t_HText(UInt8 window, Int x, Int y, const std::string& text) {
  const t_Window* record = checkedWindow("t_HText", window);
  if (record == nullptr) return;
  const t_Font font = record->Font;
  if (font.Data.empty()) {
    logLine("t_HText: Window #", window, " has no text font.");
    return;
  }
  if (font.Format != UncompressedGrey) {
    logLine("t_HText: Font format must be uncompressed grey for text-printing.");
    return;
  }
  const std::optional<Picture> picture = drawablePicture("t_HText", window);
  if (!picture || font.Width <= 0 || font.Height <= 0) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    const std::uint32_t value = penValue<L>(canvas);
    Wide left = x;
    for (const char32_t scalar : scalarsOf(text)) {
      if (left >= picture->width) break;
      if (const UInt8* glyph = glyphPixels(font, printedCode(scalar))) {
        drawGlyphInk<L>(canvas, font, glyph, left, y, value);
      }
      left += font.Width;
    }
  });
}

t_Image t_HGet(UInt8 window, Int x, Int y, Int width, Int height) {
  const t_Window* record = checkedWindow("t_HGet", window);
  if (record == nullptr) return {};
  const std::optional<Picture> picture = pictureOf(*record);
  if (!picture) return {};
  const std::optional<Placement> cut = placed(*picture, x, y, width, height);
  if (!cut) return {};
  const Int columns = cut->columns.last - cut->columns.first + 1;
  const Int rows = cut->rows.last - cut->rows.first + 1;
  t_Image image{columns, rows, std::vector<UInt8>(static_cast<std::size_t>(columns * rows * 4))};
  for (Int row = 0; row < rows; ++row) {
    composeRow(*picture, cut->columns.first, cut->rows.first + row, columns,
               image.Pixels.data() + row * columns * 4);
  }
  return image;
}

void t_HPut(UInt8 window, Int x, Int y, const t_Image& image) {
  const std::optional<Picture> picture = drawablePicture("t_HPut", window);
  if (!picture) return;
  if (!wellFormed(image)) {
    logLine("t_HPut: Image of ", image.Width, " x ", image.Height, " pixels has ",
            image.Pixels.size(), " bytes.");
    return;
  }
  const std::optional<Placement> cut = placed(*picture, x, y, image.Width, image.Height);
  if (!cut) return;
  Canvas canvas(window, *picture);
  onLayout(picture->depth, [&](auto layout) {
    using L = decltype(layout);
    for (Int row = cut->rows.first; row <= cut->rows.last; ++row) {
      const Int imageX = cut->columns.first - x, imageY = row - y;
      putRow<L>(canvas, image.Pixels.data() + (imageY * image.Width + imageX) * 4, row,
                cut->columns);
    }
  });
}

}  // namespace rvtools
