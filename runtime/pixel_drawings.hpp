// SPDX-License-Identifier: MIT
// Internal: what the pixel operations keep beside each graphic window's record (which keeps its
// 53 fields): the window's pen, and which of its text cells hold pixel drawings, so that a host
// that draws a window from its text cells (the terminal) knows which cells to draw from the
// picture instead. The pixel operations mark cells, t_PrintSymbol clears the cell it draws a
// glyph into, a scroll moves the marks with the lines it moves, and t_InitWindow starts afresh.
// The program's threads write the marks while a host reads them, so each window's marks are
// kept under a lock of their own.
#pragma once

#include <cstdint>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// The pen of graphic window `window` (0..7): palette colour 15 until the program chooses another.
t_RGBColor penOf(UInt8 window);
void setPen(UInt8 window, const t_RGBColor& colour);

// The window was initialised anew: its pen is palette colour 15, and none of its columns x
// lines text cells holds a drawing (a window without text memory, columns or lines below 1,
// has no cells).
void resetPixelDrawings(UInt8 window, Int columns, Int lines);

// t_PrintSymbol drew a glyph into cell (column, line), counted from 1.
void forgetPixelDrawing(UInt8 window, Int column, Int line);

// A scroll moved the pixels of lines firstLine + 1..lastLine up by one line (`up`), or those of
// firstLine..lastLine - 1 down; the marks move with them, and the line they leave keeps its own,
// as its pixels do.
void movePixelDrawingLines(UInt8 window, Int firstLine, Int lastLine, bool up);

// The cells that hold pixel drawings, Columns x Lines flags line by line from the top.
struct PixelDrawingCells {
  Int Columns = 0;
  Int Lines = 0;
  std::vector<bool> Cells;
};
PixelDrawingCells pixelDrawingCells(UInt8 window);

// What marking one pixel takes: the grid of cells and the tables of the cell of every pixel
// column and row, which find a cell without dividing. A loop that draws pixel by pixel keeps a
// copy as a local, where it stays in registers; the fields of an object in memory would be read
// again after every byte the loop writes.
struct PixelMarker {
  bool active = false;
  UInt8* cells = nullptr;
  const std::uint32_t* columnOf = nullptr;
  const std::uint32_t* lineStartOf = nullptr;
  Int added = 0;  // cells marked that were not
  Int last = -1;  // the cell marked last

  // Pixel (x, y), inside the picture, was written.
  [[gnu::always_inline]] void mark(Int x, Int y) {
    if (!active) return;
    const Int index = lineStartOf[y] + columnOf[x];
    if (index == last) return;
    last = index;
    added += 1 - cells[index];
    cells[index] = 1;
  }
};

// Marks the text cells whose pixels one operation writes. Cell (column, line), counted from 0,
// covers the pixels cellWidth x column.. and cellHeight x line.. of the picture. The window's
// marks stay locked while the object lives; an operation must not print a glyph meanwhile.
class PixelCellMarks {
 public:
  // A window without text memory, or a cell size below 1, marks nothing.
  PixelCellMarks(UInt8 window, Int width, Int height, Int cellWidth, Int cellHeight);
  ~PixelCellMarks();
  PixelCellMarks(const PixelCellMarks&) = delete;
  PixelCellMarks& operator=(const PixelCellMarks&) = delete;

  // Pixel (x, y), inside the picture, was written.
  void mark(Int x, Int y) { marker_.mark(x, y); }
  // Pixels firstX..lastX of row y, inside the picture, were written.
  void markRun(Int firstX, Int lastX, Int y);
  // Pixels firstX..lastX of rows firstY..lastY, inside the picture, were written.
  void markRectangle(Int firstX, Int lastX, Int firstY, Int lastY);

  // A copy for a loop, and taking back what the loop marked with it.
  PixelMarker marker() const {
    return {marker_.active, marker_.cells, marker_.columnOf, marker_.lineStartOf, 0, -1};
  }
  void add(const PixelMarker& marker) { marker_.added += marker.added; }

 private:
  void markCells(Int lineStart, Int firstColumn, Int lastColumn);

  UInt8 window_;
  PixelMarker marker_;
  Int stride_ = 0;  // cells from one line to the next
  // The cells of the run marked last, which the rows of a region's cell line mark again.
  Int lastStart_ = -1, lastFirst_ = 0, lastLast_ = -1;
};

}  // namespace rvtools
