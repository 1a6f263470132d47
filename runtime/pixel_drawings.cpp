// SPDX-License-Identifier: MIT
// The pens and the marks of pixel drawings of the eight graphic windows. A window's marks are a
// byte a text cell under the window's own lock, with a count of the marked cells beside them, so
// that t_PrintSymbol and the scroll, which run for every glyph and line, pass by a window that
// holds no drawing without taking the lock. The grid has a spare column and a spare line, always
// marked and never shown, for the pixels beyond the text cells: every pixel has a cell to mark,
// and marking it needs no test.
#include "runtime/pixel_drawings.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <mutex>

namespace rvtools {
namespace {

constexpr t_RGBColor White{255, 255, 255, 255};

// A colour as one word, so that the pen is a lock-free atomic everywhere (a record of four
// bytes is aligned to one byte, and some compilers would call a library to load it).
constexpr std::uint32_t packed(const t_RGBColor& colour) {
  return (std::uint32_t{colour.Alpha} << 24) | (std::uint32_t{colour.Red} << 16) |
         (std::uint32_t{colour.Green} << 8) | colour.Blue;
}

constexpr t_RGBColor unpacked(std::uint32_t word) {
  return {static_cast<UInt8>(word >> 24), static_cast<UInt8>(word >> 16),
          static_cast<UInt8>(word >> 8), static_cast<UInt8>(word)};
}

struct WindowDrawings {
  Relaxed<std::uint32_t> pen{packed(White)};
  std::mutex lock;
  // Guarded by `lock`: the grid of (columns + 1) x (lines + 1) cells, 1 where a cell holds a
  // drawing, and how many of the columns x lines text cells do.
  Int columns = 0, lines = 0;
  std::vector<UInt8> marked;
  Int markedCount = 0;
  // The tables that PixelCellMarks reads, for a picture and cell size: the cell column of each
  // pixel column and the first cell of the line of each pixel row.
  Int tableWidth = 0, tableHeight = 0, tableCellWidth = 0, tableCellHeight = 0;
  std::vector<std::uint32_t> columnOf, lineStartOf;
  // Whether any text cell is marked, readable without the lock.
  std::atomic<bool> anyMarked{false};

  Int stride() const { return columns + 1; }
  UInt8& cell(Int column, Int line) {
    return marked[static_cast<std::size_t>(line * stride() + column)];
  }

  void countMarks() {
    const auto all = std::count(marked.begin(), marked.end(), UInt8{1});
    markedCount = all - (columns + lines + 1);  // less the spare column and line
    anyMarked.store(markedCount > 0, std::memory_order_relaxed);
  }

  void buildTables(Int width, Int height, Int cellWidth, Int cellHeight) {
    if (tableWidth == width && tableHeight == height && tableCellWidth == cellWidth &&
        tableCellHeight == cellHeight) {
      return;
    }
    columnOf.resize(static_cast<std::size_t>(width));
    for (Int x = 0; x < width; ++x)
      columnOf[x] = static_cast<std::uint32_t>(std::min(x / cellWidth, columns));
    lineStartOf.resize(static_cast<std::size_t>(height));
    for (Int y = 0; y < height; ++y) {
      lineStartOf[y] = static_cast<std::uint32_t>(std::min(y / cellHeight, lines) * stride());
    }
    tableWidth = width, tableHeight = height;
    tableCellWidth = cellWidth, tableCellHeight = cellHeight;
  }
};

std::array<WindowDrawings, GraphicWindowCount>& drawings() {
  static auto* all = new std::array<WindowDrawings, GraphicWindowCount>;
  return *all;
}

}  // namespace

t_RGBColor penOf(UInt8 window) {
  return window < GraphicWindowCount ? unpacked(drawings()[window].pen.load()) : White;
}

void setPen(UInt8 window, const t_RGBColor& colour) {
  if (window < GraphicWindowCount) drawings()[window].pen = packed(colour);
}

void resetPixelDrawings(UInt8 window, Int columns, Int lines) {
  if (window >= GraphicWindowCount) return;
  WindowDrawings& state = drawings()[window];
  state.pen = packed(White);
  const bool hasCells = columns >= 1 && lines >= 1;
  std::lock_guard guard(state.lock);
  state.columns = hasCells ? columns : 0;
  state.lines = hasCells ? lines : 0;
  state.marked.assign(static_cast<std::size_t>(state.stride() * (state.lines + 1)), 0);
  for (Int line = 0; line <= state.lines; ++line) state.cell(state.columns, line) = 1;
  for (Int column = 0; column < state.columns; ++column) state.cell(column, state.lines) = 1;
  state.tableWidth = 0;
  state.countMarks();
}

void forgetPixelDrawing(UInt8 window, Int column, Int line) {
  if (window >= GraphicWindowCount) return;
  WindowDrawings& state = drawings()[window];
  if (!state.anyMarked.load(std::memory_order_relaxed)) return;
  std::lock_guard guard(state.lock);
  if (column < 1 || line < 1 || column > state.columns || line > state.lines) return;
  UInt8& cell = state.cell(column - 1, line - 1);
  if (cell == 0) return;
  cell = 0;
  --state.markedCount;
  state.anyMarked.store(state.markedCount > 0, std::memory_order_relaxed);
}

void movePixelDrawingLines(UInt8 window, Int firstLine, Int lastLine, bool up) {
  if (window >= GraphicWindowCount) return;
  WindowDrawings& state = drawings()[window];
  if (!state.anyMarked.load(std::memory_order_relaxed)) return;
  std::lock_guard guard(state.lock);
  const Int first = std::max<Int>(firstLine, 1), last = std::min(lastLine, state.lines);
  if (first >= last) return;
  UInt8* top = &state.cell(0, first - 1);
  const Int stride = state.stride();
  const auto moved = static_cast<std::size_t>((last - first) * stride);
  if (up) {
    std::memmove(top, top + stride, moved);
  } else {
    std::memmove(top + stride, top, moved);
  }
  state.countMarks();
}

PixelDrawingCells pixelDrawingCells(UInt8 window) {
  if (window >= GraphicWindowCount) return {};
  WindowDrawings& state = drawings()[window];
  std::lock_guard guard(state.lock);
  PixelDrawingCells cells{state.columns, state.lines, {}};
  cells.Cells.reserve(static_cast<std::size_t>(state.columns * state.lines));
  for (Int line = 0; line < state.lines; ++line) {
    for (Int column = 0; column < state.columns; ++column) {
      cells.Cells.push_back(state.cell(column, line) != 0);
    }
  }
  return cells;
}

PixelCellMarks::PixelCellMarks(UInt8 window, Int width, Int height, Int cellWidth, Int cellHeight)
    : window_(window) {
  if (window >= GraphicWindowCount || cellWidth < 1 || cellHeight < 1) return;
  WindowDrawings& state = drawings()[window];
  state.lock.lock();
  if (state.columns == 0) {
    state.lock.unlock();
    return;
  }
  state.buildTables(width, height, cellWidth, cellHeight);
  marker_ = {true, state.marked.data(), state.columnOf.data(), state.lineStartOf.data(), 0, -1};
  stride_ = state.stride();
}

PixelCellMarks::~PixelCellMarks() {
  if (!marker_.active) return;
  WindowDrawings& state = drawings()[window_];
  state.markedCount += marker_.added;
  state.anyMarked.store(state.markedCount > 0, std::memory_order_relaxed);
  state.lock.unlock();
}

void PixelCellMarks::markRun(Int firstX, Int lastX, Int y) {
  if (!marker_.active) return;
  const Int start = marker_.lineStartOf[y];
  const Int first = marker_.columnOf[firstX], last = marker_.columnOf[lastX];
  if (start == lastStart_ && first >= lastFirst_ && last <= lastLast_) return;
  markCells(start, first, last);
  lastStart_ = start, lastFirst_ = first, lastLast_ = last;
}

void PixelCellMarks::markRectangle(Int firstX, Int lastX, Int firstY, Int lastY) {
  if (!marker_.active) return;
  const Int first = marker_.columnOf[firstX], last = marker_.columnOf[lastX];
  const Int lastStart = marker_.lineStartOf[lastY];
  for (Int start = marker_.lineStartOf[firstY]; start <= lastStart; start += stride_) {
    markCells(start, first, last);
  }
}

void PixelCellMarks::markCells(Int lineStart, Int firstColumn, Int lastColumn) {
  UInt8* row = marker_.cells + lineStart;
  marker_.added += std::count(row + firstColumn, row + lastColumn + 1, UInt8{0});
  std::memset(row + firstColumn, 1, static_cast<std::size_t>(lastColumn - firstColumn + 1));
}

}  // namespace rvtools
