// SPDX-License-Identifier: MIT
// A graphic window as terminal cells, read from the window's text memory or composed from its
// picture. Text memory is read as the image composition reads video memory: while the program
// may write it, so a frame may show a cell half changed, which the next frame mends. Every
// address is checked against the video memory first, since the program may re-initialise the
// window meanwhile. Depends on the public runtime, display and font-code headers.
#include "terminal/window_cells.hpp"

#include <algorithm>

#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools::terminal {
namespace {

constexpr Int LargestSide = 8192;
constexpr char32_t UpperHalfBlock = U'▀';

Int ceilingOfQuotient(Int dividend, Int divisor) {
  return (dividend + divisor - 1) / divisor;
}

// The mean colour of the pixels in [left, right) x [top, bottom); the default colour for none.
CellColour meanColour(const UInt8* pixels, Int width, Int left, Int right, Int top, Int bottom) {
  if (right <= left || bottom <= top) return DefaultColour;
  Int red = 0, green = 0, blue = 0;
  for (Int y = top; y < bottom; ++y) {
    const UInt8* pixel = pixels + 4 * (y * width + left);
    for (Int x = left; x < right; ++x, pixel += 4) {
      red += pixel[1];
      green += pixel[2];
      blue += pixel[3];
    }
  }
  const Int count = (right - left) * (bottom - top);
  return rgbColour(static_cast<UInt8>(red / count), static_cast<UInt8>(green / count),
                   static_cast<UInt8>(blue / count));
}

WindowPlacement drawTextWindow(UInt8 window, const t_Window& record, CellGrid& grid, int lines) {
  const Int start = record.TextMemoryStart, end = record.TextMemoryEnd;
  const Int textWidth = record.TextWidth, textHeight = record.TextHeight;
  const Int half = (end - start + 1) / 2;
  const bool inMemory = start >= 0 && end < static_cast<Int>(VideoMemory.size());
  if (!inMemory || textWidth < 1 || textHeight < 1 || textHeight > half / textWidth) return {};
  WindowPlacement placement;
  placement.Window = window;
  placement.FullColumns = static_cast<int>(textWidth);
  placement.FullLines = static_cast<int>(textHeight);
  placement.Columns = std::min(placement.FullColumns, grid.columns());
  placement.Lines = std::min(placement.FullLines, lines);
  placement.CellWidth = std::max<Int>(record.Width / textWidth, 1);
  placement.CellHeight = std::max<Int>(record.Height / textHeight, 1);
  const UInt8* codes = VideoMemory.data() + start;
  drawTextCells(codes, codes + half, textWidth, placement.Columns, placement.Lines, grid);
  return placement;
}

WindowPlacement drawPixelWindow(UInt8 window, const t_Window& record, CellGrid& grid, int lines,
                                std::vector<UInt8>& picture) {
  const Int width = record.Width, height = record.Height;
  if (width < 1 || height < 1 || width > LargestSide || height > LargestSide) return {};
  picture.resize(static_cast<std::size_t>(width * height * 4));
  if (!t_WindowImageInto(window, picture.data(), picture.size(), PixelOrder::AlphaRedGreenBlue)) {
    return {};
  }
  const int scale = pixelScale(width, height, grid.columns(), lines);
  const auto [columns, shownLines] =
      drawHalfBlockPixels(picture.data(), width, height, scale, grid, lines);
  WindowPlacement placement;
  placement.Window = window;
  placement.Columns = placement.FullColumns = columns;
  placement.Lines = placement.FullLines = shownLines;
  placement.CellWidth = scale;
  placement.CellHeight = 2 * scale;
  return placement;
}

}  // namespace

CellColour paletteCellColour(int number) {
  const t_RGBColor colour = PaletteColor(number);
  return rgbColour(colour.Red, colour.Green, colour.Blue);
}

void drawTextCells(const UInt8* codes, const UInt8* colours, Int textWidth, int columns, int lines,
                   CellGrid& grid) {
  for (int line = 0; line < lines; ++line) {
    for (int column = 0; column < columns; ++column) {
      const Int index = column + line * textWidth;
      const UInt8 colour = colours[index];
      grid.at(column, line) = {fontCodeCharacter(codes[index]), paletteCellColour(colour >> 4),
                               paletteCellColour(colour & 0x0F)};
    }
  }
}

int pixelScale(Int width, Int height, int columns, int lines) {
  if (columns < 1 || lines < 1) return static_cast<int>(std::max(width, height));
  const Int scale = std::max(
      {Int{1}, ceilingOfQuotient(width, columns), ceilingOfQuotient(height, 2 * Int{lines})});
  return static_cast<int>(scale);
}

std::pair<int, int> drawHalfBlockPixels(const UInt8* pixels, Int width, Int height, int scale,
                                        CellGrid& grid, int lines) {
  const int columns =
      static_cast<int>(std::min<Int>(ceilingOfQuotient(width, scale), grid.columns()));
  const int shownLines = static_cast<int>(
      std::min<Int>(ceilingOfQuotient(height, 2 * Int{scale}), std::min(lines, grid.lines())));
  for (int line = 0; line < shownLines; ++line) {
    const Int top = 2 * Int{line} * scale;
    const Int middle = std::min(top + scale, height);
    const Int bottom = std::min(top + 2 * scale, height);
    for (int column = 0; column < columns; ++column) {
      const Int left = Int{column} * scale;
      const Int right = std::min(left + scale, width);
      grid.at(column, line) = {UpperHalfBlock, meanColour(pixels, width, left, right, top, middle),
                               meanColour(pixels, width, left, right, middle, bottom)};
    }
  }
  return {columns, shownLines};
}

WindowPlacement drawWindow(UInt8 window, CellGrid& grid, int lines, std::vector<UInt8>& picture) {
  if (window >= 8 || !MemoryInitialized || !Windows[window].Initialized) return {};
  t_Window& record = Windows[window];
  lines = std::min(lines, grid.lines());
  record.VerticalBlank = false;
  const WindowPlacement placement = record.TextMemoryStart >= 0
                                        ? drawTextWindow(window, record, grid, lines)
                                        : drawPixelWindow(window, record, grid, lines, picture);
  record.VerticalBlank = true;
  return placement;
}

}  // namespace rvtools::terminal
