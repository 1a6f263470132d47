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
#include "terminal/block_cells.hpp"

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

// Composes the window's picture into `picture` unless it holds the window's picture at this
// version and size already; false when there is none.
bool composeIfChanged(const WindowView& view, ComposedPicture& picture) {
  const std::uint64_t version = view.pictureVersion();
  const Int width = view.width(), height = view.height();
  if (picture.Valid && picture.Window == view.number() && picture.Version == version &&
      picture.Width == width && picture.Height == height) {
    return true;
  }
  picture.Valid = false;
  if (width < 1 || height < 1 || width > LargestPictureSide || height > LargestPictureSide) {
    return false;
  }
  picture.Pixels.resize(static_cast<std::size_t>(width * height * 4));
  ++picture.Compositions;
  if (!view.composePicture(picture.Pixels.data(), picture.Pixels.size(),
                           PixelOrder::AlphaRedGreenBlue)) {
    return false;
  }
  picture.Valid = true;
  picture.Window = view.number();
  picture.Version = version;
  picture.Width = width;
  picture.Height = height;
  return true;
}

// The shown cells that hold pixel drawings, drawn over their text from the picture.
void drawPixelCells(const WindowView& view, const WindowPlacement& placement, Int textWidth,
                    Int textHeight, CellGrid& grid, ComposedPicture& picture) {
  const std::vector<bool> marked = view.pixelCells();
  // A grid of another size belongs to a window initialised anew since its cells were read.
  if (marked.size() != static_cast<std::size_t>(textWidth * textHeight)) return;
  bool any = false;
  for (int line = 0; line < placement.Lines && !any; ++line) {
    for (int column = 0; column < placement.Columns && !any; ++column) {
      any = marked[static_cast<std::size_t>(column + line * textWidth)];
    }
  }
  if (!any || !composeIfChanged(view, picture)) return;
  const Int cellWidth = placement.CellWidth, cellHeight = placement.CellHeight;
  if (textWidth * cellWidth > picture.Width || textHeight * cellHeight > picture.Height) return;
  for (int line = 0; line < placement.Lines; ++line) {
    for (int column = 0; column < placement.Columns; ++column) {
      if (!marked[static_cast<std::size_t>(column + line * textWidth)]) continue;
      grid.at(column, line) = blockCellOf(picture.Pixels.data(), picture.Width, column * cellWidth,
                                          line * cellHeight, cellWidth, cellHeight);
    }
  }
}

WindowPlacement drawTextWindow(const WindowView& view, CellGrid& grid, int lines,
                               ComposedPicture& picture) {
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
  drawPixelCells(view, placement, cells.Columns, cells.Lines, grid, picture);
  return placement;
}

// Composed every time, so that what a program writes straight into its video memory shows too
// (the host draws a frame at least every PictureLifetime).
WindowPlacement drawPixelWindow(const WindowView& view, CellGrid& grid, int lines,
                                ComposedPicture& picture) {
  picture.Valid = false;
  if (!composeIfChanged(view, picture)) return {};
  const Int width = picture.Width, height = picture.Height;
  const int scale = pixelScale(width, height, grid.columns(), lines);
  const auto [columns, shownLines] =
      drawHalfBlockPixels(picture.Pixels.data(), width, height, scale, grid, lines);
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
                           ComposedPicture& picture) {
  if (!view.ready()) return {};
  lines = std::min(lines, grid.lines());
  return view.hasText() ? drawTextWindow(view, grid, lines, picture)
                        : drawPixelWindow(view, grid, lines, picture);
}

}  // namespace rvtools::terminal
