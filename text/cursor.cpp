// SPDX-License-Identifier: MIT
// Cursor movement, scrolling and clearing: keeps a graphic window's text cursor inside its text
// area the way a home-computer screen does (moving right past the last column wraps to the next
// line, moving down past the last line scrolls the area up), scrolls the area by one line and
// blanks parts of it. Blanks and redrawn cells go through t_PrintSymbol; an area that spans
// whole text-memory lines scrolls instead by three block moves of its characters, colour bytes
// and pixels. Depends on the window records and video memory (runtime), the entry checks and
// text-cell addressing of runtime/checks.hpp, and t_PrintSymbol. None of these operations draws
// the cursor picture; that is the caller's business.
#include <algorithm>
#include <cstring>
#include <optional>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/pixel_drawings.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"
#include "text/cells.hpp"

namespace rvtools {
namespace {

constexpr UInt8 Blank = 32;

// The window's text area, read once.
struct Area {
  Int firstColumn, lastColumn, firstLine, lastLine;
};

Area areaOf(const t_Window& record) {
  return {record.TextFirstColumn, record.TextLastColumn, record.TextFirstLine, record.TextLastLine};
}

// An inclusive range of columns or lines; empty when first > last.
struct Span {
  Int first, last;
};

// The columns first..last that exist in the text memory. Only t_Htab can leave the cursor
// beyond the area's last column, and a program can write any bounds into the record, so the
// scroll's redrawing runs over such a clamped span: it stops at the last column and does nothing
// when it starts beyond it.
Span columnsInTextMemory(const t_Window& record, Int first, Int last) {
  return {std::max<Int>(first, 1), std::min<Int>(last, record.TextWidth)};
}

Span linesInTextMemory(const t_Window& record, Int first, Int last) {
  return {std::max<Int>(first, 1), std::min<Int>(last, record.TextHeight)};
}

// Draws blanks in the current colour, honouring TextInverse, cell by cell of runs.
auto blankCell(UInt8 window, const t_Window& record) {
  return [window, color = UInt8{record.TextColor}](Int column, Int line) {
    t_PrintSymbol(window, Blank, color, column, line);
  };
}

// Blanks the cells firstColumn..lastColumn of a line.
void blankCells(UInt8 window, const t_Window& record, Int firstColumn, Int lastColumn, Int line) {
  CellRuns(record).row(firstColumn, lastColumn, line, blankCell(window, record));
}

// Redraws cell (column, line) from the character and colour byte stored for (column, fromLine).
void redrawCellFrom(UInt8 window, const TextCells& cells, Int column, Int line, Int fromLine) {
  const Int source = cells.characterAddress(column, fromLine);
  if (source < 0) return;
  t_PrintSymbol(window, VideoMemory[source], VideoMemory[source + cells.half], column, line);
}

enum class Direction { Up, Down };

// The slow scroll: every cell of the area is redrawn from its neighbour below (Up) or above
// (Down) in text memory. The stored colour bytes already carry any inverse exchange, so the
// redraw runs with TextInverse cleared.
void redrawArea(UInt8 window, t_Window& record, const Area& area, Direction direction) {
  const Span columns = columnsInTextMemory(record, area.firstColumn, area.lastColumn);
  const Span lines = linesInTextMemory(record, area.firstLine, area.lastLine);
  const TextCells cells = textCells(record);
  const bool inverse = record.TextInverse;
  record.TextInverse = false;
  if (direction == Direction::Up) {
    for (Int line = lines.first; line < lines.last; ++line) {
      for (Int column = columns.first; column <= columns.last; ++column) {
        redrawCellFrom(window, cells, column, line, line + 1);
      }
    }
  } else {
    for (Int line = lines.last; line > lines.first; --line) {
      for (Int column = columns.first; column <= columns.last; ++column) {
        redrawCellFrom(window, cells, column, line, line - 1);
      }
    }
  }
  record.TextInverse = inverse;
}

bool insideVideoMemory(Int address) {
  return address >= 0 && address < static_cast<Int>(VideoMemory.size());
}

// `count` bytes of the video memory moving from `source` to `destination`; nothing moves when
// count is 0 or less.
struct BlockMove {
  Int source, destination, count;

  bool insideBlock(Int first, Int last) const {
    if (count <= 0) return true;
    return insideVideoMemory(first) && insideVideoMemory(last) && source >= first &&
           destination >= first && source + count - 1 <= last && destination + count - 1 <= last;
  }
  void perform() const {
    if (count <= 0) return;
    std::memmove(VideoMemory.data() + destination, VideoMemory.data() + source,
                 static_cast<std::size_t>(count));
  }
};

struct FastScroll {
  BlockMove characters, colours, pixels;
};

// No window side, in pixels or cells, is larger than the largest picture side; bounding the
// sizes first keeps every product of the fast scroll far inside Int.
bool withinSides(Int value) {
  return value >= 1 && value <= LargestPictureSide;
}

// Whether the record's sizes and block addresses are those of a real window and the area lies
// inside its text memory and picture.
bool fastScrollGeometry(const t_Window& record, const Area& area) {
  const t_Font& font = record.Font;
  return insideVideoMemory(record.MemoryStart) && insideVideoMemory(record.TextMemoryStart) &&
         insideVideoMemory(record.TextMemoryEnd) && withinSides(record.Width) &&
         withinSides(record.Height) && withinSides(font.Width) && withinSides(font.Height) &&
         withinSides(record.TextWidth) && isSupportedDepth(record.BitDepth) &&
         area.firstLine >= 1 && area.firstLine <= area.lastLine &&
         area.lastLine <= record.TextHeight && withinSides(area.lastLine) &&
         font.Height * area.lastLine <= record.Height &&
         font.Width * area.lastColumn <= record.Width;
}

// Byte offset of pixel (x, y), both counted from 0, in the video memory.
Int pixelOffset(const t_Window& record, Int x, Int y) {
  return record.MemoryStart + ((x + y * record.Width) * record.BitDepth) / 8;
}

// The three moves of a fast scroll, or nothing when the record's geometry is not that of a real
// window or a move would reach outside the window's blocks; such a window scrolls the slow way,
// which checks every cell.
std::optional<FastScroll> fastScrollOf(const t_Window& record, const Area& area,
                                       Direction direction) {
  if (!fastScrollGeometry(record, area)) return std::nullopt;
  const Int width = record.TextWidth;
  const Int glyphWidth = record.Font.Width, glyphHeight = record.Font.Height;
  const Int lineBytes = (record.BitDepth * glyphHeight * record.Width) / 8;
  const Int characterCount = width * (area.lastLine - area.firstLine);
  const Int areaStart = record.TextMemoryStart + width * (area.firstLine - 1);
  const Int rightEdge = glyphWidth * area.lastColumn;

  FastScroll moves{};
  if (direction == Direction::Up) {
    moves.characters = {areaStart + width, areaStart, characterCount};
    const Int first = pixelOffset(record, 0, glyphHeight * area.firstLine);
    const Int end = pixelOffset(record, rightEdge, glyphHeight * area.lastLine - 1);
    moves.pixels = {first, first - lineBytes, end - first};
  } else {
    moves.characters = {areaStart, areaStart + width, characterCount};
    const Int first = pixelOffset(record, 0, glyphHeight * (area.firstLine - 1));
    const Int end = pixelOffset(record, rightEdge, glyphHeight * (area.lastLine - 1) - 1);
    moves.pixels = {first, first + lineBytes, end - first};
  }
  const TextCells cells = textCells(record);
  moves.colours = {moves.characters.source + cells.half, moves.characters.destination + cells.half,
                   characterCount};

  const Int characterHalfEnd = cells.start + cells.half - 1;
  if (!moves.characters.insideBlock(cells.start, characterHalfEnd) ||
      !moves.colours.insideBlock(cells.start + cells.half, characterHalfEnd + cells.half) ||
      !moves.pixels.insideBlock(record.MemoryStart, record.MemoryEnd)) {
    return std::nullopt;
  }
  return moves;
}

// Scrolls the area by one line and blanks the line it frees; silent under ScrollLock.
void scroll(UInt8 window, t_Window& record, Direction direction) {
  if (record.ScrollLock) return;
  const Area area = areaOf(record);
  std::optional<FastScroll> fast;
  if (area.firstColumn == 1 && area.lastColumn == record.TextWidth) {
    fast = fastScrollOf(record, area, direction);
  }
  if (fast) {
    fast->characters.perform();
    fast->colours.perform();
    fast->pixels.perform();
    // Pixel drawings move with the pixels, and so do the marks of the cells that hold them.
    movePixelDrawingLines(window, area.firstLine, area.lastLine, direction == Direction::Up);
  } else {
    redrawArea(window, record, area, direction);
  }
  const Int freedLine = direction == Direction::Up ? area.lastLine : area.firstLine;
  blankCells(window, record, area.firstColumn, area.lastColumn, freedLine);
}

// The cursor moves by one cell; at the edge of the Int range it stays where it is.
void moveCursor(Relaxed<Int>& position, Int step) {
  position = saturatingSum(position, step);
}

void cursorDown(UInt8 window, t_Window& record) {
  moveCursor(record.TextVpos, 1);
  if (record.TextVpos > record.TextLastLine) {
    scroll(window, record, Direction::Up);
    moveCursor(record.TextVpos, -1);
  }
}

void cursorUp(UInt8 window, t_Window& record) {
  moveCursor(record.TextVpos, -1);
  if (record.TextVpos < record.TextFirstLine) {
    scroll(window, record, Direction::Down);
    moveCursor(record.TextVpos, 1);
  }
}

void carriageReturn(UInt8 window, t_Window& record) {
  record.TextHpos = record.TextFirstColumn;
  cursorDown(window, record);
}

// Blanks from the cursor to the area's last column on the cursor's line; nothing when the
// cursor stands beyond the last column.
void clearEndOfLine(UInt8 window, const t_Window& record) {
  blankCells(window, record, record.TextHpos, record.TextLastColumn, record.TextVpos);
}

t_Window* textWindow(std::string_view operation, UInt8 window) {
  return checkedWindow(operation, window, Needs::TextMemory);
}

}  // namespace

void t_CursorHome(UInt8 window) {
  t_Window* record = textWindow("t_CursorHome", window);
  if (record == nullptr) return;
  record->TextHpos = record->TextFirstColumn;
  record->TextVpos = record->TextFirstLine;
}

void t_CursorEnd(UInt8 window) {
  t_Window* record = textWindow("t_CursorEnd", window);
  if (record == nullptr) return;
  record->TextHpos = record->TextLastColumn;
  record->TextVpos = record->TextLastLine;
}

// Counts from the area's first column but is bounded by the text memory's width, so the cursor
// may land beyond the area's last column; the clearing and scrolling loops allow for that.
void t_Htab(UInt8 window, Int column) {
  t_Window* record = textWindow("t_Htab", window);
  if (record == nullptr || column < 1) return;
  Int position = 0;
  if (__builtin_add_overflow(column - 1, record->TextFirstColumn.load(), &position)) return;
  if (position <= record->TextWidth) record->TextHpos = position;
}

// An absolute line of the text memory, regardless of the area's first line.
void t_Vtab(UInt8 window, Int line) {
  t_Window* record = textWindow("t_Vtab", window);
  if (record == nullptr) return;
  if (line >= 1 && line <= record->TextHeight) record->TextVpos = line;
}

void t_CursorRight(UInt8 window) {
  t_Window* record = textWindow("t_CursorRight", window);
  if (record == nullptr) return;
  moveCursor(record->TextHpos, 1);
  if (record->TextHpos > record->TextLastColumn) carriageReturn(window, *record);
}

void t_CursorLeft(UInt8 window) {
  t_Window* record = textWindow("t_CursorLeft", window);
  if (record == nullptr) return;
  moveCursor(record->TextHpos, -1);
  if (record->TextHpos < record->TextFirstColumn) {
    record->TextHpos = record->TextLastColumn;
    cursorUp(window, *record);
  }
}

void t_CursorDown(UInt8 window) {
  if (t_Window* record = textWindow("t_CursorDown", window)) cursorDown(window, *record);
}

void t_CursorUp(UInt8 window) {
  if (t_Window* record = textWindow("t_CursorUp", window)) cursorUp(window, *record);
}

void t_Cr(UInt8 window) {
  if (t_Window* record = textWindow("t_Cr", window)) carriageReturn(window, *record);
}

void t_ScrollUp(UInt8 window) {
  if (t_Window* record = textWindow("t_ScrollUp", window)) scroll(window, *record, Direction::Up);
}

void t_ScrollDown(UInt8 window) {
  if (t_Window* record = textWindow("t_ScrollDown", window)) {
    scroll(window, *record, Direction::Down);
  }
}

void t_ClearEndOfLine(UInt8 window) {
  if (t_Window* record = textWindow("t_ClearEndOfLine", window)) clearEndOfLine(window, *record);
}

// The cursor fields are left as they were.
void t_ClearEndOfWindow(UInt8 window) {
  t_Window* record = textWindow("t_ClearEndOfWindow", window);
  if (record == nullptr) return;
  CellRuns runs(*record);
  const auto blank = blankCell(window, *record);
  const Int line = record->TextVpos;
  runs.row(record->TextHpos, record->TextLastColumn, line, blank);
  runs.rows(record->TextFirstColumn, record->TextLastColumn, saturatingSum(line, 1),
            record->TextLastLine, blank);
}

}  // namespace rvtools
