// SPDX-License-Identifier: MIT
// Glyph rendering: t_PrintSymbol draws one character cell of a graphic window and records the
// character and its colour byte in the window's text memory. Every other text operation ends
// here. The glyph's grey values mix the foreground and the background colour of the palette;
// the mixes of every colour pair are computed once, and at the byte-per-channel depths 8 and 24
// a rendered cell is kept per thread, so that printing a known character is a row-by-row copy.
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

// A cell rendered once for a font, character, colour byte and depth, kept so that the next
// print of the same cell is a copy of its rows. The entry holds the font's data, so the data
// cannot be freed and its address reused while the entry exists.
struct RenderedCell {
  std::shared_ptr<const std::vector<UInt8>> fontData;
  Int glyphWidth = 0, glyphHeight = 0, bytesPerPixel = 0;
  UInt8 character = 0, colours = 0;
  std::vector<UInt8> rows;
};

constexpr std::size_t RenderedCellSlots = 4096;

RenderedCell& renderedCellSlot(UInt8 character, UInt8 colours) {
  thread_local std::vector<RenderedCell> slots(RenderedCellSlots);
  const std::size_t key = (std::size_t{colours} << 8) | character;
  return slots[(key * 2654435761u >> 8) % RenderedCellSlots];
}

// Copies rows of a fixed length in 16-byte moves. Cells 16 pixels wide, the usual width, take
// this path; left to itself the compiler copies such short rows with a slow string move.
template <Int rowBytes>
void copyRows(UInt8* out, Int stride, const UInt8* rows, Int count) {
  static_assert(rowBytes % 16 == 0);
  for (Int r = 0; r < count; ++r) {
    for (Int k = 0; k < rowBytes; k += 16)
      std::memcpy(out + r * stride + k, rows + r * rowBytes + k, 16);
  }
}

template <int bytesPerPixel>
void drawCopied(const Cell& cell, const t_Font& font, UInt8 character, UInt8 colours,
                const UInt8* glyph) {
  RenderedCell& slot = renderedCellSlot(character, colours);
  const Int rowBytes = cell.glyphWidth * bytesPerPixel;
  if (slot.fontData != font.Data.shared() || slot.character != character ||
      slot.colours != colours || slot.bytesPerPixel != bytesPerPixel ||
      slot.glyphWidth != cell.glyphWidth || slot.glyphHeight != cell.glyphHeight) {
    slot = {font.Data.shared(),
            cell.glyphWidth,
            cell.glyphHeight,
            bytesPerPixel,
            character,
            colours,
            std::vector<UInt8>(rowBytes * cell.glyphHeight)};
    const Cell scratch{slot.rows.data(), cell.glyphWidth, 0, 0, cell.glyphWidth, cell.glyphHeight};
    drawWholeBytes<bytesPerPixel>(scratch, glyph, shades()[colours]);
  }
  UInt8* out = cell.memory + (cell.y0 * cell.width + cell.x0) * bytesPerPixel;
  const Int stride = cell.width * bytesPerPixel;
  if (rowBytes == 16 * bytesPerPixel) {
    copyRows<16 * bytesPerPixel>(out, stride, slot.rows.data(), cell.glyphHeight);
  } else {
    for (Int r = 0; r < cell.glyphHeight; ++r) {
      std::memcpy(out + r * stride, slot.rows.data() + r * rowBytes,
                  static_cast<std::size_t>(rowBytes));
    }
  }
}

void drawGlyph(Int depth, const Cell& cell, const t_Font& font, UInt8 character, UInt8 colours) {
  const UInt8* glyph = font.Data.data() + character * cell.glyphWidth * cell.glyphHeight;
  const auto& shade = shades()[colours];
  switch (depth) {
    case 1:
      drawOneBit(cell, glyph, shade);
      break;
    case 4:
      drawFourBit(cell, glyph, shade);
      break;
    case 8:
      drawCopied<1>(cell, font, character, colours, glyph);
      break;
    case 16:
      drawWholeBytes<2>(cell, glyph, shade);
      break;
    case 24:
      drawCopied<3>(cell, font, character, colours, glyph);
      break;
    case 32:
      drawWholeBytes<4>(cell, glyph, shade);
      break;
    default:
      break;
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
