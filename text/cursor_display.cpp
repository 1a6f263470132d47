// SPDX-License-Identifier: MIT
// Cursor display: the text cursor of a graphic window is its cell at (TextHpos, TextVpos) shown
// with foreground and background exchanged. Showing and hiding are the same inversion, and a
// nesting level decides when it happens, so that nested callers can ask for the cursor on their
// own. Depends on the window records and video memory (runtime), the entry checks and text-cell
// addressing of runtime/checks.hpp, and t_PrintSymbol.
#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

// Redraws the cursor cell from its own code and colour byte with TextInverse set. t_PrintSymbol
// stores the colour byte after the exchange, so a second inversion restores both the picture
// and the stored colour: the inversion is its own undo.
void invertCursorCell(UInt8 window, t_Window& record) {
  const Int column = record.TextHpos, line = record.TextVpos;
  if (column < 1 || column > record.TextWidth || line < 1 || line > record.TextHeight) return;
  const TextCells cells = textCells(record);
  const Int address = cells.characterAddress(column, line);
  if (address < 0) return;
  const bool inverse = record.TextInverse;
  record.TextInverse = true;
  t_PrintSymbol(window, VideoMemory[address], VideoMemory[address + cells.half], column, line);
  record.TextInverse = inverse;
}

t_Window* cursorWindow(std::string_view operation, UInt8 window) {
  return checkedWindow(operation, window, Needs::TextMemory);
}

}  // namespace

// The level is never clamped: after surplus t_CursorOff calls as many extra t_CursorOn calls
// are needed before the cursor shows again.
void t_CursorOn(UInt8 window) {
  t_Window* record = cursorWindow("t_CursorOn", window);
  if (record == nullptr) return;
  const Int before = record->TextCursorLevel;
  record->TextCursorLevel = saturatingSum(before, 1);
  if (before == 0) invertCursorCell(window, *record);
}

void t_CursorOff(UInt8 window) {
  t_Window* record = cursorWindow("t_CursorOff", window);
  if (record == nullptr) return;
  const Int before = record->TextCursorLevel;
  record->TextCursorLevel = saturatingSum(before, -1);
  if (before == 1) invertCursorCell(window, *record);
}

void t_CursorDraw(UInt8 window) {
  if (t_Window* record = cursorWindow("t_CursorDraw", window)) invertCursorCell(window, *record);
}

}  // namespace rvtools
