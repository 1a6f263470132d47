// SPDX-License-Identifier: MIT
// A graphic window as terminal cells, read from the window's text cells or composed from its
// picture, both through the window view. Depends on the public window view, display and
// font-code headers.
#include "terminal/window_cells.hpp"

#include <algorithm>

#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/window_view.hpp"

namespace rvtools::terminal {
namespace {

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

WindowPlacement drawTextWindow(const WindowView& view, CellGrid& grid, int lines) {
  const ScreenCells cells = view.textCells();
  if (cells.Columns < 1 || cells.Lines < 1) return {};
  WindowPlacement placement;
  placement.Window = view.number();
  placement.FullColumns = static_cast<int>(cells.Columns);
  placement.FullLines = static_cast<int>(cells.Lines);
  placement.Columns = std::min(placement.FullColumns, grid.columns());
  placement.Lines = std::min(placement.FullLines, lines);
  placement.CellWidth = view.cellWidth();
  placement.CellHeight = view.cellHeight();
  drawTextCells(cells.Codes.data(), cells.Colours.data(), cells.Columns, placement.Columns,
                placement.Lines, grid);
  return placement;
}

WindowPlacement drawPixelWindow(const WindowView& view, CellGrid& grid, int lines,
                                std::vector<UInt8>& picture) {
  const Int width = view.width(), height = view.height();
  if (width < 1 || height < 1 || width > LargestPictureSide || height > LargestPictureSide) {
    return {};
  }
  picture.resize(static_cast<std::size_t>(width * height * 4));
  if (!view.composePicture(picture.data(), picture.size(), PixelOrder::AlphaRedGreenBlue)) {
    return {};
  }
  const int scale = pixelScale(width, height, grid.columns(), lines);
  const auto [columns, shownLines] =
      drawHalfBlockPixels(picture.data(), width, height, scale, grid, lines);
  WindowPlacement placement;
  placement.Window = view.number();
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

WindowPlacement drawWindow(const WindowView& view, CellGrid& grid, int lines,
                           std::vector<UInt8>& picture) {
  if (!view.ready()) return {};
  lines = std::min(lines, grid.lines());
  return view.hasText() ? drawTextWindow(view, grid, lines)
                        : drawPixelWindow(view, grid, lines, picture);
}

}  // namespace rvtools::terminal
