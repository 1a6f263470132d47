// SPDX-License-Identifier: MIT
// Internal to the terminal host: a graphic window as terminal cells. A window with text memory
// gives one cell per text cell, its character as the font shows it (FontCodeCharacters) in
// its colour byte's two palette colours, except the cells that hold pixel drawings, which are
// drawn from its picture as quadrant blocks in two colours (blockCellOf); a window without text
// memory gives its picture as upper-half-block cells, two pixels a cell, scaled down by a whole
// factor until it fits.
#pragma once

#include <cstdint>
#include <vector>

#include "rvtools/types.hpp"
#include "rvtools/window_view.hpp"
#include "terminal/cell_renderer.hpp"

namespace rvtools::terminal {

// Where a window's cells lie on the terminal (from its top left) and how many window pixels
// one cell covers, so that a click on a cell can be told in window pixels.
struct WindowPlacement {
  UInt8 Window = 255;
  int Columns = 0;  // cells shown
  int Lines = 0;
  int FullColumns = 0;  // cells the whole window needs
  int FullLines = 0;
  Int CellWidth = 1;  // window pixels per cell
  Int CellHeight = 1;
  bool fitsWhole() const { return Columns >= FullColumns && Lines >= FullLines; }
};

// A window's picture as last composed, kept between frames: a window with text composes it
// anew only when a cell holds pixel drawings and the picture's version or size changed.
struct ComposedPicture {
  std::vector<UInt8> Pixels;  // bytes alpha, red, green, blue
  bool Valid = false;
  UInt8 Window = 255;
  std::uint64_t Version = 0;  // read before composing, so that a change meanwhile shows again
  Int Width = 0;
  Int Height = 0;
  int Compositions = 0;  // how often composing was tried, which the tests count
};

// Palette colour `number` (0..15) as a cell colour.
CellColour paletteCellColour(int number);

// Text cells from text memory: `codes` and `colours` hold one byte per cell, `textWidth` cells
// a line; the first `columns` x `lines` of them go to the grid's top left.
void drawTextCells(const UInt8* codes, const UInt8* colours, Int textWidth, int columns, int lines,
                   CellGrid& grid);

// The whole factor by which a picture of width x height pixels shrinks so that it fits into
// columns x lines cells of two pixels each; at least 1.
int pixelScale(Int width, Int height, int columns, int lines);

// A picture of width x height pixels (bytes alpha, red, green, blue, rows from the top) as
// upper-half-block cells at the grid's top left, each pixel of them the mean of scale x scale
// picture pixels. Returns the cells covered (columns, lines).
std::pair<int, int> drawHalfBlockPixels(const UInt8* pixels, Int width, Int height, int scale,
                                        CellGrid& grid, int lines);

// The window of `view` into the first `lines` lines of `grid`, from its text cells (those with
// pixel drawings from its picture) or its picture, composed into `picture`. A window without
// text composes it every time. Nothing is drawn, and an empty placement returned, for a window
// that is not ready or shows nothing.
WindowPlacement drawWindow(const WindowView& view, CellGrid& grid, int lines,
                           ComposedPicture& picture);

}  // namespace rvtools::terminal
