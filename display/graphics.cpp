// SPDX-License-Identifier: MIT
// Graphic modes and low-resolution plotting. There is no pixel plane of its own: every
// low-resolution point lives in a text cell and is drawn by re-printing that cell with
// t_PrintSymbol. Colour blocks hold two points a cell (upper point in the colour byte's high
// nibble, lower point in its low nibble, symbol 3); quarter blocks hold 2 x 2 points a cell,
// coded in the cell's symbol (0..14, blank 32). Also here: the text area of a mixed or full
// graphics screen, reading a point back, inverting cells and reading the screen as text.
// Depends on the window records and video memory (runtime), the entry checks and cell
// addressing (runtime/checks.hpp) and glyph rendering (t_PrintSymbol).
#include <algorithm>
#include <optional>
#include <string>

#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

constexpr UInt8 UpperHalfBlock = 3;
constexpr UInt8 Blank = 32;
constexpr UInt8 CarriageReturn = 13;
constexpr Int FirstPointScalar = 33;
constexpr UInt8 Black = 0;

// a + b, or nothing when the sum leaves the Int range (such a point is off every grid).
std::optional<Int> sum(Int a, Int b) {
  Int result = 0;
  if (__builtin_add_overflow(a, b, &result)) return std::nullopt;
  return result;
}

// offset + 2 x value + extra, or nothing on overflow.
std::optional<Int> doubled(Int offset, Int value, Int extra) {
  Int twice = 0;
  if (__builtin_mul_overflow(value, Int{2}, &twice)) return std::nullopt;
  const std::optional<Int> shifted = sum(offset, twice);
  return shifted ? sum(*shifted, extra) : std::nullopt;
}

// The columns and lines of the text screen that the window's text block really holds; for a
// consistent record these are TextWidth and TextHeight.
struct CellGrid {
  Int columns = 0;
  Int lines = 0;
};

CellGrid heldCells(const t_Window& record) {
  const TextCells cells = textCells(record);
  const Int width = record.TextWidth, height = record.TextHeight;
  if (width < 1 || height < 1 || cells.characterAddress(1, 1) < 0) return {};
  return {std::min(width, cells.half), std::min(height, cells.half / width)};
}

// Address of the character byte of the cell at 0-based (column, line), or -1. Callers pass
// cells of the grid, so the 1-based form cannot overflow.
Int cellAddress(const t_Window& record, Int column, Int line) {
  return textCells(record).characterAddress(column + 1, line + 1);
}

// Whether (x, y) lies on a grid of `columns` x 2 x `lines` points; the doubled bound is
// compared by halving the point, so that it cannot overflow.
bool onGrid(Int x, Int y, Int columns, Int lines) {
  return x >= 0 && y >= 0 && x < columns && y / 2 < lines;
}

// Sets colour-block point (x, y) to the foreground colour of TextColor, clipped to the grid.
void plotColourBlock(UInt8 window, const t_Window& record, std::optional<Int> x,
                     std::optional<Int> y) {
  if (!x || !y || !onGrid(*x, *y, record.TextWidth, record.TextHeight)) return;
  const Int line = *y / 2;
  const Int address = cellAddress(record, *x, line);
  if (address < 0) return;
  const UInt8 old = VideoMemory[address + textCells(record).half];
  const UInt8 ink = record.TextColor;
  const auto colours =
      static_cast<UInt8>(*y % 2 == 0 ? (ink & 0xF0) | (old & 0x0F) : (old & 0xF0) | (ink >> 4));
  t_PrintSymbol(window, UpperHalfBlock, colours, *x + 1, line + 1);
}

// Quarter weights: upper left 8, upper right 4, lower left 2, lower right 1.
int quarterWeight(Int position) {
  return 8 >> position;
}

int quartersOf(UInt8 code) {
  return code == Blank ? 0 : 15 - code;
}

UInt8 quarterCode(int mask) {
  return mask == 0 ? Blank : static_cast<UInt8>(15 - mask);
}

// The symbol after setting or clearing one quarter; codes that are no quarter block of the
// operation stay as they are.
UInt8 quarterAfter(UInt8 old, Int position, bool set) {
  if (set) {
    if ((old >= 1 && old <= 14) || old == Blank) {
      return quarterCode(quartersOf(old) | quarterWeight(position));
    }
    return old;
  }
  if (old <= 14) return quarterCode(quartersOf(old) & ~quarterWeight(position));
  return old;
}

// The screen as bytes cut at every carriage return, each piece without its trailing blanks.
std::string withoutTrailingBlanks(const std::string& screen) {
  std::string trimmed;
  std::size_t start = 0;
  while (true) {
    const std::size_t end =
        std::min(screen.find(static_cast<char>(CarriageReturn), start), screen.size());
    std::size_t last = end;
    while (last > start && screen[last - 1] == static_cast<char>(Blank)) --last;
    trimmed.append(screen, start, last - start);
    if (end == screen.size()) return trimmed;
    trimmed += static_cast<char>(CarriageReturn);
    start = end + 1;
  }
}

}  // namespace

void t_FullArea(UInt8 window) {
  t_Window* record = checkedWindow("t_FullArea", window);
  if (record == nullptr) return;
  record->TextFirstColumn = 1;
  record->TextLastColumn = record->TextWidth;
  record->TextFirstLine = 1;
  record->TextLastLine = record->TextHeight;
}

void t_MixedArea(UInt8 window) {
  t_Window* record = checkedWindow("t_MixedArea", window);
  if (record == nullptr) return;
  record->TextFirstColumn = 1;
  record->TextLastColumn = record->TextWidth;
  record->TextFirstLine = record->TextHeight - 4;
  record->TextLastLine = record->TextHeight;
}

void t_Graphic(UInt8 window, bool full) {
  t_Window* record = checkedWindow("t_Graphic", window, Needs::TextMemory);
  if (record == nullptr) return;
  if (full) {
    t_FullArea(window);
  } else {
    t_MixedArea(window);
  }
  const CellGrid grid = heldCells(*record);
  for (Int line = 1; line <= grid.lines; ++line) {
    for (Int column = 1; column <= grid.columns; ++column) {
      t_PrintSymbol(window, UpperHalfBlock, Black, column, line);
    }
  }
}

void t_Plot(UInt8 window, Int x, Int y) {
  t_Window* record = checkedWindow("t_Plot", window, Needs::TextMemory);
  if (record == nullptr) return;
  const Int mode = record->LoResMode;
  const Int offsetX = record->LoResOffsetX, offsetY = record->LoResOffsetY;
  switch (mode) {
    case 0:
      plotColourBlock(window, *record, sum(offsetX, x), sum(offsetY, y));
      return;
    case 1:
      plotColourBlock(window, *record, doubled(offsetX, x, 0), sum(offsetY, y));
      plotColourBlock(window, *record, doubled(offsetX, x, 1), sum(offsetY, y));
      return;
    case 2:
      for (Int dy = 0; dy < 2; ++dy) {
        for (Int dx = 0; dx < 2; ++dx) {
          plotColourBlock(window, *record, doubled(offsetX, x, dx), doubled(offsetY, y, dy));
        }
      }
      return;
    case 3: {
      const std::optional<Int> quarterX = sum(offsetX, x), quarterY = sum(offsetY, y);
      if (quarterX && quarterY) t_PlotHalfSize(window, *quarterX, *quarterY, true);
      return;
    }
    default:
      logLine("t_Plot: Illegal graphic mode.");
  }
}

void t_PlotHalfSize(UInt8 window, Int x, Int y, bool set) {
  t_Window* record = checkedWindow("t_PlotHalfSize", window, Needs::TextMemory);
  if (record == nullptr) return;
  if (x < 0 || y < 0 || x / 2 >= record->TextWidth || y / 2 >= record->TextHeight) return;
  const Int column = x / 2, line = y / 2;
  const Int address = cellAddress(*record, column, line);
  if (address < 0) return;
  const UInt8 old = VideoMemory[address];
  const Int position = x % 2 + 2 * (y % 2);
  logLine("t_PlotHalfSize: PixelByte = ", ByteToHex(old), ", x = ", x, ", y = ", y,
          ", Plot position ", position);
  t_PrintSymbol(window, quarterAfter(old, position, set), record->TextColor, column + 1, line + 1);
}

void t_PlotString(UInt8 window, Int x, Int y, const std::string& pattern) {
  Int i = 0;
  for (const char32_t scalar : scalarsOf(pattern)) {
    if (scalar >= FirstPointScalar) {
      if (const std::optional<Int> column = sum(x, i)) t_Plot(window, *column, y);
    }
    ++i;
  }
}

void t_LoResOffset(UInt8 window, Int x, Int y) {
  // Failures are reported under t_CursorOff's name, a quirk kept on purpose.
  t_Window* record = checkedWindow("t_CursorOff", window);
  if (record == nullptr) return;
  record->LoResOffsetX = x;
  record->LoResOffsetY = y;
}

Int t_Scrn(UInt8 window, Int x, Int y) {
  t_Window* record = checkedWindow("t_Scrn", window, Needs::TextMemory);
  if (record == nullptr) return -1;
  const Int offsetX = record->LoResOffsetX, offsetY = record->LoResOffsetY;
  std::optional<Int> pointX, pointY;
  switch (static_cast<Int>(record->LoResMode)) {
    case 0:
      pointX = sum(offsetX, x), pointY = sum(offsetY, y);
      break;
    case 1:
      pointX = doubled(offsetX, x, 0), pointY = sum(offsetY, y);
      break;
    case 2:
      pointX = doubled(offsetX, x, 0), pointY = doubled(offsetY, y, 0);
      break;
    default:
      return -1;
  }
  if (!pointX || !pointY || !onGrid(*pointX, *pointY, record->TextWidth, record->TextHeight)) {
    return -1;
  }
  const Int address = cellAddress(*record, *pointX, *pointY / 2);
  if (address < 0) return -1;
  const UInt8 colours = VideoMemory[address + textCells(*record).half];
  return *pointY % 2 == 0 ? colours >> 4 : colours & 15;
}

void t_InvertRect(UInt8 window, Int firstColumn, Int firstLine, Int lastColumn, Int lastLine) {
  t_Window* record = checkedWindow("t_InvertRect", window, Needs::TextMemory);
  if (record == nullptr) return;
  if (firstColumn < 1 || firstColumn > lastColumn || lastColumn > record->TextWidth ||
      firstLine < 1 || firstLine > lastLine || lastLine > record->TextHeight) {
    return;
  }
  const CellGrid grid = heldCells(*record);
  const Int half = textCells(*record).half;
  const bool inverse = record->TextInverse;
  record->TextInverse = true;
  for (Int line = firstLine; line <= std::min(lastLine, grid.lines); ++line) {
    for (Int column = firstColumn; column <= std::min(lastColumn, grid.columns); ++column) {
      const Int address = cellAddress(*record, column - 1, line - 1);
      t_PrintSymbol(window, VideoMemory[address], VideoMemory[address + half], column, line);
    }
  }
  record->TextInverse = inverse;
}

std::string t_GetScreen(UInt8 window, const std::string& separator) {
  t_Window* record = checkedWindow("t_GetScreen", window, Needs::TextMemory);
  if (record == nullptr) return {};
  const CellGrid grid = heldCells(*record);
  std::string screen;
  for (Int line = 0; line < grid.lines; ++line) {
    for (Int column = 0; column < grid.columns; ++column) {
      screen += utf8Of(VideoMemory[cellAddress(*record, column, line)]);
    }
    screen += separator;
  }
  if (separator.empty()) return screen;
  return withoutTrailingBlanks(screen);
}

std::string unicodeOfFontCodes(std::string_view codes) {
  std::string text;
  for (const char32_t scalar : scalarsOf(codes)) {
    text += utf8Of(scalar <= 255 ? fontCodeCharacter(static_cast<UInt8>(scalar)) : scalar);
  }
  return text;
}

// Read from the text memory itself rather than from t_GetScreen's lines, since a cell may hold
// code 13 (a quarter block), which t_GetScreen's line separator cannot be told from.
std::string unicodeScreenText(UInt8 window) {
  t_Window* record = checkedWindow("t_GetScreen", window, Needs::TextMemory);
  if (record == nullptr) return {};
  const CellGrid grid = heldCells(*record);
  std::string text;
  for (Int line = 0; line < grid.lines; ++line) {
    std::string characters;
    Int kept = 0;  // bytes up to the last character that is not a blank
    for (Int column = 0; column < grid.columns; ++column) {
      const UInt8 code = VideoMemory[cellAddress(*record, column, line)];
      characters += utf8Of(fontCodeCharacter(code));
      if (code != Blank) kept = static_cast<Int>(characters.size());
    }
    characters.resize(static_cast<std::size_t>(kept));
    text += characters;
    text += '\n';
  }
  return text;
}

std::string screenColorText(UInt8 window) {
  t_Window* record = checkedWindow("t_GetScreen", window, Needs::TextMemory);
  if (record == nullptr) return {};
  const CellGrid grid = heldCells(*record);
  const Int half = textCells(*record).half;
  std::string text;
  for (Int line = 0; line < grid.lines; ++line) {
    for (Int column = 0; column < grid.columns; ++column) {
      if (column > 0) text += ' ';
      text += ByteToHex(VideoMemory[cellAddress(*record, column, line) + half]);
    }
    text += '\n';
  }
  return text;
}

}  // namespace rvtools
