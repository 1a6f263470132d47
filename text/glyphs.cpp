// SPDX-License-Identifier: MIT
// Glyph rendering: t_PrintSymbol draws one character cell of a graphic window and records the
// character and its colour byte in the window's text memory. Every other text operation ends
// here. The glyph's grey values mix the foreground and the background colour of the palette;
// the mixes of every colour pair are computed once, and a rendered cell is kept per thread in
// the depth's own format, so that printing a known character moves whole rows.
// The cells that t_PrintSymbol accepts are also what the runs of text/cells.hpp go over.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "runtime/pixel_drawings.hpp"
#include "runtime/processor.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"
#include "text/cells.hpp"
#include "text/shades.hpp"

namespace rvtools {
namespace {

constexpr Int UncompressedGrey = 2;
constexpr Int UncompressedPlain = 0;

// Shades for every (colour byte, grey value): the colour byte's high nibble is the ink.
using ShadeTable = std::array<std::array<Shade, 256>, 256>;

const ShadeTable& shades() {
  static const ShadeTable* table = [] {
    auto* built = new ShadeTable;
    for (int colours = 0; colours < 256; ++colours) {
      const t_RGBColor ink = PaletteColor(colours >> 4), paper = PaletteColor(colours & 15);
      for (int g = 0; g < 256; ++g) (*built)[colours][g] = glyphShade(ink, paper, g);
    }
    return built;
  }();
  return *table;
}

// Where a cell lands in the window's graphic memory.
struct Cell {
  UInt8* memory;   // first byte of the window's graphic memory
  Int width;       // pixels a row of the window
  Int x0, y0;      // top-left pixel of the cell
  Int glyphWidth;  // font cell size
  Int glyphHeight;
};

void drawOneBit(const Cell& cell, const UInt8* glyph, const std::array<Shade, 256>& shade) {
  for (Int r = 0; r < cell.glyphHeight; ++r) {
    const Int y = cell.y0 + r;
    for (Int i = 0; i < cell.glyphWidth; ++i) {
      const Int x = cell.x0 + i;
      UInt8& byte = cell.memory[y * (cell.width / 8) + x / 8];
      const auto mask = static_cast<UInt8>(0x80 >> (x % 8));
      byte = shade[glyph[r * cell.glyphWidth + i]].bit ? byte | mask : byte & ~mask;
    }
  }
}

void drawFourBit(const Cell& cell, const UInt8* glyph, const std::array<Shade, 256>& shade) {
  for (Int r = 0; r < cell.glyphHeight; ++r) {
    const Int y = cell.y0 + r;
    for (Int i = 0; i < cell.glyphWidth; ++i) {
      const Int x = cell.x0 + i;
      UInt8& byte = cell.memory[y * (cell.width / 2) + x / 2];
      const UInt8 nibble = shade[glyph[r * cell.glyphWidth + i]].nibble;
      byte = x % 2 == 0 ? (byte & 0x0F) | (nibble << 4) : (byte & 0xF0) | nibble;
    }
  }
}

// Depths 16 and 32 leave the pixel's first byte alone; depths 8 and 24 write every byte.
template <int bytesPerPixel>
void drawWholeBytes(const Cell& cell, const UInt8* glyph, const std::array<Shade, 256>& shade) {
  for (Int r = 0; r < cell.glyphHeight; ++r) {
    UInt8* out = cell.memory + ((cell.y0 + r) * cell.width + cell.x0) * bytesPerPixel;
    const UInt8* row = glyph + r * cell.glyphWidth;
    for (Int i = 0; i < cell.glyphWidth; ++i, out += bytesPerPixel) {
      const Shade& s = shade[row[i]];
      if constexpr (bytesPerPixel == 1) {
        out[0] = s.grey;
      } else if constexpr (bytesPerPixel == 2) {
        out[1] = s.grey;
      } else if constexpr (bytesPerPixel == 3) {
        out[0] = s.red, out[1] = s.green, out[2] = s.blue;
      } else {
        out[1] = s.red, out[2] = s.green, out[3] = s.blue;
      }
    }
  }
}

// Draws the cell pixel by pixel, straight from the glyph's grey values.
void drawPixelByPixel(Int depth, const Cell& cell, const UInt8* glyph,
                      const std::array<Shade, 256>& shade) {
  switch (depth) {
    case 1:
      drawOneBit(cell, glyph, shade);
      break;
    case 4:
      drawFourBit(cell, glyph, shade);
      break;
    case 8:
      drawWholeBytes<1>(cell, glyph, shade);
      break;
    case 16:
      drawWholeBytes<2>(cell, glyph, shade);
      break;
    case 24:
      drawWholeBytes<3>(cell, glyph, shade);
      break;
    case 32:
      drawWholeBytes<4>(cell, glyph, shade);
      break;
    default:
      break;
  }
}

// Where a cell's rows lie in the graphic memory: the first byte of the top row, the bytes from
// one row to the next, the bytes that a row touches, and at depths 1 and 4 the place of the
// cell's first pixel inside its byte (its phase), other than 0 when the font's width is no
// multiple of a byte's pixels.
struct RowLayout {
  Int start, stride, rowBytes, phase;
};

RowLayout rowLayout(Int depth, const Cell& cell) {
  if (depth == 1 || depth == 4) {
    const Int perByte = 8 / depth;
    const Int phase = cell.x0 % perByte;
    const Int stride = cell.width / perByte;
    return {cell.y0 * stride + cell.x0 / perByte, stride,
            (phase + cell.glyphWidth + perByte - 1) / perByte, phase};
  }
  const Int bytes = depth / 8;
  const Int stride = cell.width * bytes;
  return {cell.y0 * stride + cell.x0 * bytes, stride, cell.glyphWidth * bytes, 0};
}

// Marks the bits of a row that drawing the cell leaves as they are: at depths 1 and 4 the
// pixels of its edge bytes that lie outside the cell, at depths 16 and 32 the first byte of
// every pixel.
void markKeptBits(UInt8* keep, Int depth, const RowLayout& layout, Int glyphWidth) {
  if (depth == 1 || depth == 4) {
    const Int perByte = 8 / depth;
    for (Int p = 0; p < layout.rowBytes * perByte; ++p) {
      if (p >= layout.phase && p < layout.phase + glyphWidth) continue;
      keep[p / perByte] |= ((1 << depth) - 1) << (8 - depth * (p % perByte + 1));
    }
  } else if (depth == 16 || depth == 32) {
    for (Int k = 0; k < layout.rowBytes; k += depth / 8) keep[k] = 0xFF;
  }
}

// A cell rendered once for a font, character, colour byte, depth and phase, in the graphic
// memory's own format, so that the next print of the same cell moves whole rows. When the row
// of marks after the cell's rows marks bits that the cell does not colour, the rows are merged
// into the picture rather than copied over it. The entry holds the font's data, so the data cannot
// be freed and its address reused while the entry exists. Its fields fill one cache line, which a
// print reads besides the rows.
struct alignas(64) RenderedCell {
  std::shared_ptr<const std::vector<UInt8>> fontData;
  std::vector<UInt8> rows;  // glyphHeight rows of rowBytes, then the row of marks
  std::int32_t glyphWidth = 0, glyphHeight = 0, rowBytes = 0;
  UInt8 depth = 0, phase = 0, character = 0, colours = 0;
  bool merged = false;  // whether the marks hold any bit

  const UInt8* keep() const { return rows.data() + rowBytes * glyphHeight; }
};

// Each drawing thread keeps its own slots, so the cache is never shared. A slot holds at most
// RenderedCellLargest bytes of rows, a 16 x 32 cell at 32 bits, and one row of marks; larger
// cells are drawn pixel by pixel. A drawing thread's cache thus takes 256 KiB of slots and, for
// 16 x 32 cells, at most 8 MiB of rows and 256 KiB of marks, filled only as different cells are
// printed.
constexpr std::size_t RenderedCellSlots = 4096;
constexpr Int RenderedCellLargest = 2048;

RenderedCell& renderedCellSlot(UInt8 character, UInt8 colours, Int depth, Int phase) {
  thread_local std::vector<RenderedCell> slots(RenderedCellSlots);
  const auto key = static_cast<std::size_t>((depth * 8 + phase) << 16 | colours << 8 | character);
  return slots[(key * 2654435761u >> 8) % RenderedCellSlots];
}

bool holdsCell(const RenderedCell& slot, const t_Font& font, UInt8 character, UInt8 colours,
               Int depth, Int phase) {
  return slot.fontData == font.Data.shared() && slot.character == character &&
         slot.colours == colours && slot.depth == depth && slot.phase == phase &&
         slot.glyphWidth == font.Width && slot.glyphHeight == font.Height;
}

const RenderedCell& renderedCell(Int depth, const RowLayout& layout, const t_Font& font,
                                 UInt8 character, UInt8 colours, const UInt8* glyph) {
  RenderedCell& slot = renderedCellSlot(character, colours, depth, layout.phase);
  if (holdsCell(slot, font, character, colours, depth, layout.phase)) return slot;
  // The sizes fit: a cell with more than RenderedCellLargest bytes of rows is never kept.
  slot.fontData = font.Data.shared();
  slot.glyphWidth = static_cast<std::int32_t>(font.Width);
  slot.glyphHeight = static_cast<std::int32_t>(font.Height);
  slot.rowBytes = static_cast<std::int32_t>(layout.rowBytes);
  slot.depth = static_cast<UInt8>(depth), slot.phase = static_cast<UInt8>(layout.phase);
  slot.character = character, slot.colours = colours;
  slot.rows.assign(static_cast<std::size_t>(layout.rowBytes * (font.Height + 1)), 0);
  UInt8* keep = slot.rows.data() + layout.rowBytes * font.Height;
  markKeptBits(keep, depth, layout, font.Width);
  slot.merged = std::any_of(keep, keep + layout.rowBytes, [](UInt8 b) { return b != 0; });
  // The rows form a picture of one cell's width, the cell at the same phase inside it.
  const Cell scratch{slot.rows.data(), layout.rowBytes * 8 / depth, layout.phase, 0, font.Width,
                     font.Height};
  drawPixelByPixel(depth, scratch, glyph, shades()[colours]);
  return slot;
}

// Sixteen bytes that the compiler keeps in one vector register, and 32 under AVX2.
using Bytes16 = UInt8 __attribute__((vector_size(16)));
using Bytes32 = UInt8 __attribute__((vector_size(32)));

// Writes the cell's rows `stride` bytes apart in `pieces` pieces of a fixed type, so that each
// row moves through a few registers; left to itself the compiler copies such short rows with a
// slow string move. A merged row keeps the picture's bits that `keep` marks.
template <typename Piece, int pieces, bool merge>
[[gnu::always_inline]] inline void moveRows(UInt8* out, Int stride, const RenderedCell& cell) {
  constexpr Int size = sizeof(Piece);
  const UInt8* in = cell.rows.data();
  Piece keep[pieces];
  if constexpr (merge) {
    for (int k = 0; k < pieces; ++k) std::memcpy(&keep[k], cell.keep() + k * size, size);
  }
  const Int height = cell.glyphHeight;
  for (Int r = 0; r < height; ++r, out += stride, in += size * pieces) {
    for (int k = 0; k < pieces; ++k) {
      Piece ink;
      std::memcpy(&ink, in + k * size, size);
      if constexpr (merge) {
        Piece old;
        std::memcpy(&old, out + k * size, size);
        ink |= old & keep[k];
      }
      std::memcpy(out + k * size, &ink, size);
    }
  }
}

// Each row length moves in a function of its own: inside t_PrintSymbol its loop would lose the
// stride and the row count to the stack.
template <typename Piece, int pieces, bool merge>
[[gnu::noinline]] void writeRows(UInt8* out, Int stride, const RenderedCell& cell) {
  moveRows<Piece, pieces, merge>(out, stride, cell);
}

#if defined(__x86_64__)
// Rows of 32 and 64 bytes in 32-byte pieces, half the moves; a merge is most of the work of
// depths 16 and 32.
template <int pieces, bool merge>
__attribute__((target("avx2"))) void writeRowsAvx2(UInt8* out, Int stride,
                                                   const RenderedCell& cell) {
  moveRows<Bytes32, pieces, merge>(out, stride, cell);
}
#endif

// Rows of any other length, a byte at a time.
template <bool merge>
void writeRowBytes(UInt8* out, Int stride, const RenderedCell& cell) {
  const UInt8* in = cell.rows.data();
  const UInt8* keep = cell.keep();
  for (Int r = 0; r < cell.glyphHeight; ++r, out += stride, in += cell.rowBytes) {
    for (Int k = 0; k < cell.rowBytes; ++k) {
      out[k] = merge ? static_cast<UInt8>((out[k] & keep[k]) | in[k]) : in[k];
    }
  }
}

// The row lengths of a cell 16 pixels wide, the usual width, at depths 1, 4, 8, 16, 24, 32.
template <bool merge>
void writeCell(UInt8* out, Int stride, const RenderedCell& cell) {
  switch (cell.rowBytes) {
    case 2:
      return writeRows<std::uint16_t, 1, merge>(out, stride, cell);
    case 8:
      return writeRows<std::uint64_t, 1, merge>(out, stride, cell);
    case 16:
      return writeRows<Bytes16, 1, merge>(out, stride, cell);
    case 32:
#if defined(__x86_64__)
      if (hasAvx2()) return writeRowsAvx2<1, merge>(out, stride, cell);
#endif
      return writeRows<Bytes16, 2, merge>(out, stride, cell);
    case 48:
      return writeRows<Bytes16, 3, merge>(out, stride, cell);
    case 64:
#if defined(__x86_64__)
      if (hasAvx2()) return writeRowsAvx2<2, merge>(out, stride, cell);
#endif
      return writeRows<Bytes16, 4, merge>(out, stride, cell);
    default:
      return writeRowBytes<merge>(out, stride, cell);
  }
}

void drawGlyph(Int depth, const Cell& cell, const t_Font& font, UInt8 character, UInt8 colours) {
  if (!isSupportedDepth(depth)) return;
  const UInt8* glyph = font.Data.data() + character * cell.glyphWidth * cell.glyphHeight;
  const RowLayout layout = rowLayout(depth, cell);
  if (layout.rowBytes * cell.glyphHeight > RenderedCellLargest) {
    drawPixelByPixel(depth, cell, glyph, shades()[colours]);
    return;
  }
  const RenderedCell& rendered = renderedCell(depth, layout, font, character, colours, glyph);
  UInt8* out = cell.memory + layout.start;
  if (rendered.merged) {
    writeCell<true>(out, layout.stride, rendered);
  } else {
    writeCell<false>(out, layout.stride, rendered);
  }
}

// Whether the font holds the glyph's pixels in full; a font whose data ends early draws nothing
// for the codes it lacks. The font's cell size is positive here.
bool glyphInData(const t_Font& font, UInt8 character) {
  const Int cellBytes = saturatingProduct(font.Width, font.Height);
  return cellBytes <= static_cast<Int>(font.Data.size()) / (Int{character} + 1);
}

// The cells of `pixels` that fit whole, cells of `cellSize` pixels; a cell size of 0 or less
// fits everywhere, since only the far edge of a cell is tested.
Int wholeCells(Int pixels, Int cellSize) {
  if (pixels < 0) return 0;
  if (cellSize <= 0) return LargestCellNumber;
  return std::min(pixels / cellSize, LargestCellNumber);
}

// Whether the cell (column, line) lies inside the picture: only the far edge bounds it, and a
// column or line below 1 is no cell at all.
bool cellInPicture(const t_Window& record, Int column, Int line) {
  const CellLimits picture = cellsOfPicture(record);
  return column >= 1 && line >= 1 && column <= picture.columns && line <= picture.lines;
}

bool fontDrawable(const t_Font& font, UInt8 character) {
  if (character < font.Start || character > font.End) return false;
  if (font.Format != UncompressedGrey) {
    logLine(font.Format == UncompressedPlain
                ? "t_PrintSymbol: Font format must be uncompressed grey for text-printing."
                : "t_PrintSymbol: Illegal font format.");
    return false;
  }
  return font.Width > 0 && font.Height > 0 && glyphInData(font, character);
}

void recordInTextMemory(const t_Window& record, UInt8 character, UInt8 colours, Int column,
                        Int line) {
  const TextCells cells = textCells(record);
  const Int address = cells.characterAddress(column, line);
  if (address < 0) return;
  VideoMemory[address] = character;
  VideoMemory[address + cells.half] = colours;
}

}  // namespace

CellLimits cellsOfPicture(const t_Window& record) {
  return {wholeCells(record.Width, record.Font.Width),
          wholeCells(record.Height, record.Font.Height)};
}

CellLimits cellLimits(const t_Window& record) {
  // A font without a cell size of its own divides the picture into no cells.
  const bool fontHasCells = record.Font.Width > 0 && record.Font.Height > 0;
  const CellLimits picture = fontHasCells ? cellsOfPicture(record) : CellLimits{};
  const auto larger = [](Int text, Int pictureCells) {
    return std::clamp<Int>(std::max(text, pictureCells), 0, LargestCellNumber);
  };
  return {larger(record.TextWidth, picture.columns), larger(record.TextHeight, picture.lines)};
}

void t_PrintSymbol(UInt8 window, UInt8 character, UInt8 color, Int column, Int line) {
  if (window >= GraphicWindowCount) {
    logLine("t_PrintSymbol: Window is not a graphic window.");
    return;
  }
  t_Window& record = Windows[window];
  const Int redirect = record.TextRedirectOutput;
  if (redirect == 2) {
    logWrite(utf8Of(character));
    return;
  }
  if (redirect != 1) return;
  if (record.TextMemoryStart < 0 || !record.Initialized || !MemoryInitialized ||
      record.Font.Data.empty()) {
    logLine("t_PrintSymbol: Window #", window, " not initialized.");
    return;
  }
  int foreground = color >> 4, background = color & 15;
  if (record.TextInverse) std::swap(foreground, background);
  const auto colours = static_cast<UInt8>(foreground * 16 + background);
  const t_Font& font = record.Font;
  if (!cellInPicture(record, column, line)) {
    logLine("t_PrintSymbol: Window #", window, " illegal coordinates (x = ", column, ", y = ", line,
            ").");
    return;
  }
  if (fontDrawable(font, character) && pictureInsideBlock(record)) {
    const Cell cell{VideoMemory.data() + record.MemoryStart,
                    record.Width,
                    font.Width * (column - 1),
                    font.Height * (line - 1),
                    font.Width,
                    font.Height};
    drawGlyph(record.BitDepth, cell, font, character, colours);
    forgetPixelDrawing(window, column, line);
  }
  recordInTextMemory(record, character, colours, column, line);
  markPictureChanged(window);
}

}  // namespace rvtools
