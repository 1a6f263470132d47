// SPDX-License-Identifier: MIT
// Internal: the cells a graphic window can have, and runs of cells whose bounds a program chose.
//
// t_PrintSymbol draws a cell of the window's picture in the font's cell size and records it in
// the text memory; it refuses a cell beyond the picture with its "illegal coordinates" line. An
// operation that draws a run of cells (a line, the rest of a line, the rest of the text area)
// visits one by one only the cells that can exist, those of the text memory and those of the
// picture. Of the cells beyond them only the first goes to t_PrintSymbol, once per operation,
// which refuses it (unless the font has no cell size); so a run of 2^40 columns costs no more
// than the window's own cells.
#pragma once

#include <algorithm>

#include "rvtools/types.hpp"

namespace rvtools {

// No window has more columns or lines than this, whatever its font: a cell is at least a pixel.
inline constexpr Int LargestCellNumber = LargestPictureSide;

struct CellLimits {
  Int columns = 0;  // cells 1..columns of a line can exist
  Int lines = 0;    // lines 1..lines can exist
};

// The cells that t_PrintSymbol draws for the window with its current font.
CellLimits cellsOfPicture(const t_Window& record);

// The cells of the text memory or of the picture, whichever reach further: every cell of a
// consistent text area, and every cell that t_PrintSymbol draws.
CellLimits cellLimits(const t_Window& record);

// Runs of cells of one operation; `draw(column, line)` draws one cell.
class CellRuns {
 public:
  explicit CellRuns(const t_Window& record) : limits_(cellLimits(record)) {}

  // Draws the columns first..last of a line, in this order.
  template <typename Draw>
  void row(Int first, Int last, Int line, Draw&& draw) {
    if (first > last) return;
    const bool lineExists = line >= 1 && line <= limits_.lines;
    const Int from = std::max<Int>(first, 1);
    const Int to = lineExists ? std::min(last, limits_.columns) : 0;
    if (from > to) {
      refuse(first, line, draw);
      return;
    }
    if (first < from) refuse(first, line, draw);
    for (Int column = from; column <= to; ++column) draw(column, line);
    if (to < last) refuse(to + 1, line, draw);
  }

  // Draws the columns firstColumn..lastColumn of each line firstLine..lastLine.
  template <typename Draw>
  void rows(Int firstColumn, Int lastColumn, Int firstLine, Int lastLine, Draw&& draw) {
    if (firstColumn > lastColumn || firstLine > lastLine) return;
    const Int from = std::max<Int>(firstLine, 1), to = std::min(lastLine, limits_.lines);
    if (firstLine < from) row(firstColumn, lastColumn, firstLine, draw);
    for (Int line = from; line <= to; ++line) row(firstColumn, lastColumn, line, draw);
    const Int after = std::max(firstLine, to + 1);
    if (after <= lastLine) row(firstColumn, lastColumn, after, draw);
  }

 private:
  // The first cell that cannot exist goes to t_PrintSymbol, which refuses it; the rest of the
  // operation's cells beyond the window are skipped.
  template <typename Draw>
  void refuse(Int column, Int line, Draw& draw) {
    if (refused_) return;
    refused_ = true;
    draw(column, line);
  }

  CellLimits limits_;
  bool refused_ = false;
};

}  // namespace rvtools
