// SPDX-License-Identifier: MIT
// Printing on a graphic window: strings and byte strings with control codes, single characters,
// blanks and runs up to a column; the display modes that translate a character before it is
// drawn (including the one-character escape for colours, tab stops and the border); inverse
// video; redirection of a window's output; title lines and separator lines; and the control-S
// pause of output. Every character is drawn by t_PrintSymbol at the cursor, which then moves on
// with t_CursorRight (wrapping and scrolling); colours go through t_Color and t_ColorBorder.
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/display.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"
#include "text/cells.hpp"
#include "text/printed_codes.hpp"

namespace rvtools {
namespace {

constexpr Int Return = 13;
constexpr Int ControlS = 19;
constexpr Int Blank = 32;
constexpr Int QuestionMark = 63;
constexpr Int LineSymbol = 156;
constexpr Int EscapeMode = 99;
constexpr Int PauseStepNanoseconds = 10000000;

// ---------------------------------------------------------------------------------------------
// Display modes

// Mode 1: the printable ASCII range moves to the upper half of the character set.
Int upperHalf(Int code) {
  return code >= 32 && code <= 127 ? code + 128 : code;
}

// Mode 2: lower case shows as the upper half of the set, upper case as codes 0..31.
Int foldedCase(Int code) {
  if (code >= 96 && code <= 127) return code + 32;
  if (code >= 64 && code <= 95) return code - 64;
  return code;
}

// The columns from the area's first column to the end of the text memory's line.
Int columnsFromAreaStart(const t_Window& record) {
  return inclusiveCount(record.TextFirstColumn, record.TextWidth);
}

// A tab stop of the escape: to the tab stop when it lies inside the text memory's width,
// otherwise the rest of the line is cleared and the cursor goes to the next line.
void escapeTab(UInt8 window, const t_Window& record, Int every) {
  const Int stop = saturatingSum(record.TextHpos / every * every, every + 1);
  if (columnsFromAreaStart(record) < stop) {
    t_ClearEndOfLine(window);
    t_Cr(window);
  } else {
    t_PrintTab(window, stop, Blank);
  }
}

// The escape's argument. The codes it recognises leave the escape and draw nothing; any other
// code is drawn as it is and the escape goes on. Comparing unsigned sends every code below 64,
// negative ones included, to "any other code".
void applyEscape(UInt8 window, t_Window& record, Int code, t_DisplayedCharacter& shown) {
  const auto c = static_cast<std::uint64_t>(code);
  const bool recognised = (c >= 64 && c <= 95) || c == 101 || c == 102 || (c >= 105 && c <= 107) ||
                          (c >= 110 && c <= 127);
  if (!recognised) return;
  shown.Draw = false;
  record.TextDisplayMode = 0;
  if (c <= 79) {
    shown.Color = static_cast<UInt8>((c - 64) * 16 + shown.Color % 16);
  } else if (c <= 95) {
    shown.Color = static_cast<UInt8>((shown.Color & 0xF0) + (c - 80));
  } else if (c == 101) {
    t_CursorEnd(window);
  } else if (c == 102) {
    t_Htab(window, columnsFromAreaStart(record));
  } else if (c <= 107) {
    escapeTab(window, record, c == 105 ? 10 : c == 106 ? 20 : 40);
  } else {
    t_ColorBorder(window, static_cast<Int>(c) - 110);
  }
}

// t_ApplyDisplayMode after the entry checks.
t_DisplayedCharacter displayed(UInt8 window, t_Window& record, Int code) {
  t_DisplayedCharacter shown{true, code, record.TextInverse, record.TextColor};
  switch (record.TextDisplayMode) {
    case 1:
      shown.Code = upperHalf(code);
      break;
    case 2:
      shown.Code = foldedCase(code);
      break;
    case 3:
      if (code < 32) {
        t_Inverse(window);
        shown.Code = code + 64;
      }
      break;
    case 4:
      if (code < 32) {
        t_Color(window, 1);
        shown.Code = code + 64;
      }
      break;
    case EscapeMode:
      applyEscape(window, record, code, shown);
      break;
    default:
      break;
  }
  return shown;
}

// ---------------------------------------------------------------------------------------------
// Drawing at the cursor

void drawAtCursor(UInt8 window, const t_Window& record, Int code) {
  t_PrintSymbol(window, static_cast<UInt8>(code), record.TextColor, record.TextHpos,
                record.TextVpos);
  t_CursorRight(window);
}

// Draws what the display mode made of a character and sets the colour and inverse flag that
// the window is to have afterwards. A code beyond the character set prints as "?", in mode 4
// in colour 1.
void printDisplayed(UInt8 window, t_Window& record, const t_DisplayedCharacter& shown) {
  if (shown.Draw && shown.Code > 255) {
    if (record.TextDisplayMode == 4) t_Color(window, 1);
    drawAtCursor(window, record, QuestionMark);
  } else if (shown.Draw && shown.Code >= 0) {
    drawAtCursor(window, record, shown.Code);
  }
  record.TextInverse = shown.Inverse;
  record.TextColor = shown.Color;
}

// The control-S pause: when the most recent key is control-S, the key queue is emptied and
// output waits until a key arrives (which is taken and discarded) or a menu event does (which
// stays queued for the program).
void pauseOnControlS() {
  const std::optional<t_Event> latest = EventQueue.last();
  if (!latest || latest->Value != ControlS) return;
  EventQueue.clear();
  const std::size_t keys = EventQueue.count();
  const std::size_t menuEvents = MenuEventQueue.count();
  while (EventQueue.count() == keys && MenuEventQueue.count() <= menuEvents) {
    sleepFor(0, PauseStepNanoseconds);
  }
  if (EventQueue.count() != keys) EventQueue.takeFirst();
}

// One character of t_Print: below 32 a control code unless the display mode draws it.
void printOne(UInt8 window, t_Window& record, Int code) {
  if (code < 32 && record.TextDisplayMode < 3) {
    if (code == Return) pauseOnControlS();
    t_PrintControl(window, static_cast<UInt8>(code));
    return;
  }
  printDisplayed(window, record, displayed(window, record, code));
}

t_Window* printableWindow(UInt8 window) {
  t_Window* record = checkedWindow("t_Print", window, Needs::TextMemory);
  if (record != nullptr && record->Font.Data.empty()) {
    logLine("t_Print: Window #", window, " has no text font.");
    return nullptr;
  }
  return record;
}

template <typename Codes>
void printCodes(UInt8 window, const Codes& codes) {
  t_Window* record = printableWindow(window);
  if (record == nullptr) return;
  for (const auto code : codes) printOne(window, *record, static_cast<Int>(code));
  pauseOnControlS();
}

// ---------------------------------------------------------------------------------------------
// Control codes

// The actions of control codes 7..31; codes without one do nothing.
using ControlAction = void (*)(UInt8 window);

constexpr std::array<ControlAction, 32> ControlActions = [] {
  std::array<ControlAction, 32> actions{};
  actions[7] = [](UInt8) { t_Beep(); };
  actions[8] = t_CursorLeft;
  actions[10] = t_CursorDown;
  actions[11] = t_ClearEndOfWindow;
  actions[12] = [](UInt8 window) {
    t_CursorHome(window);
    t_ClearEndOfWindow(window);
  };
  actions[13] = t_Cr;
  actions[14] = t_Normal;
  actions[15] = t_Inverse;
  actions[17] = t_Reverse;
  actions[18] = [](UInt8 window) { t_Htab(window, 1); };
  actions[19] = [](UInt8 window) { Windows[window].TextDisplayMode = 0; };
  actions[20] = [](UInt8 window) { Windows[window].TextDisplayMode = 1; };
  actions[22] = t_ScrollDown;
  actions[23] = t_ScrollUp;
  actions[25] = t_CursorHome;
  actions[26] = [](UInt8 window) {
    t_Htab(window, 1);
    t_ClearEndOfLine(window);
  };
  actions[27] = [](UInt8 window) { Windows[window].TextDisplayMode = EscapeMode; };
  actions[28] = t_CursorRight;
  actions[29] = t_ClearEndOfLine;
  actions[30] = t_CursorUp;
  actions[31] = [](UInt8 window) { Windows[window].TextDisplayMode = 2; };
  return actions;
}();

bool drawing(const t_Window& record) {
  return MemoryInitialized && record.Initialized && record.TextMemoryStart >= 0 &&
         record.TextRedirectOutput == 1;
}

// ---------------------------------------------------------------------------------------------
// Lines

// Draws the code from column first to column last on the line in the window's colour; of the
// columns beyond the window only the first is drawn, and refused.
void drawHline(UInt8 window, const t_Window& record, Int first, Int last, Int line, UInt8 code) {
  const UInt8 color = record.TextColor;
  CellRuns(record).row(first, last, line, [window, code, color](Int column, Int row) {
    t_PrintSymbol(window, code, color, column, row);
  });
}

// The title line of t_Header: exactly `width` characters, left and right text apart, or both
// texts together cut to the width.
std::vector<char32_t> headerLine(const std::string& left, const std::string& right, Int width) {
  std::vector<char32_t> line = scalarsOf(left);
  const std::vector<char32_t> rightScalars = scalarsOf(right);
  const Int gap = width - static_cast<Int>(line.size()) - static_cast<Int>(rightScalars.size());
  if (gap >= 1) line.insert(line.end(), static_cast<std::size_t>(gap), U' ');
  line.insert(line.end(), rightScalars.begin(), rightScalars.end());
  if (width < 1) return {};
  if (static_cast<Int>(line.size()) > width) line.resize(static_cast<std::size_t>(width));
  return line;
}

std::string joinedUtf8(const std::vector<char32_t>& scalars) {
  std::string text;
  for (const char32_t scalar : scalars) text += utf8Of(scalar);
  return text;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Printing

void t_Print(UInt8 window, const std::string& text) {
  printCodes(window, scalarsOf(text));
}

void t_Print(UInt8 window, const Text& text) {
  printCodes(window, text.Elements);
}

void t_PrintChar(UInt8 window, UInt8 code) {
  t_Window* record = checkedWindow("t_PrintChar", window, Needs::TextMemory);
  if (record == nullptr) return;
  printDisplayed(window, *record, displayed(window, *record, code));
}

void t_PrintSpc(UInt8 window, Int count) {
  if (checkedWindow("t_PrintSpc", window, Needs::TextMemory) == nullptr) return;
  for (Int printed = 0; printed < count; ++printed) t_PrintChar(window, Blank);
}

void t_PrintTab(UInt8 window, Int column, UInt8 code) {
  t_Window* record = checkedWindow("t_PrintTab", window, Needs::TextMemory);
  if (record == nullptr) return;
  for (Int from = record->TextHpos; from < column; ++from) t_PrintChar(window, code);
}

void t_PrintControl(UInt8 window, UInt8 code) {
  if (window >= GraphicWindowCount) {
    logLine("t_PrintControl: Window is not a graphic window.");
    return;
  }
  t_Window& record = Windows[window];
  if (drawing(record)) {
    if (code < ControlActions.size() && ControlActions[code] != nullptr) {
      ControlActions[code](window);
    }
  } else if (record.TextRedirectOutput == 2) {
    logWrite(utf8Of(static_cast<char32_t>(code)));
  } else if (record.TextRedirectOutput == 1) {
    logLine("t_PrintControl: Window #", window, " not initialized.");
  }
}

t_DisplayedCharacter t_ApplyDisplayMode(UInt8 window, Int code) {
  t_Window* record = checkedWindow("t_ApplyDisplayMode", window, Needs::TextMemory);
  if (record == nullptr) return t_DisplayedCharacter{};
  return displayed(window, *record, code);
}

// ---------------------------------------------------------------------------------------------
// Modes and redirection

void t_DisplayMode(UInt8 window, Int mode) {
  if (t_Window* record = checkedWindow("t_DisplayMode", window)) record->TextDisplayMode = mode;
}

void t_Normal(UInt8 window) {
  if (t_Window* record = checkedWindow("t_Normal", window)) record->TextInverse = false;
}

void t_Inverse(UInt8 window) {
  if (t_Window* record = checkedWindow("t_Inverse", window)) record->TextInverse = true;
}

void t_Reverse(UInt8 window) {
  if (t_Window* record = checkedWindow("t_Reverse", window)) {
    record->TextInverse = !record->TextInverse;
  }
}

void t_RedirectOutput(UInt8 window, Int target) {
  if (t_Window* record = checkedWindow("t_RedirectOutput", window)) {
    record->TextRedirectOutput = target;
  }
}

// ---------------------------------------------------------------------------------------------
// Title lines and separator lines

void t_Header(UInt8 window, const std::string& left, const std::string& right) {
  t_Window* record = checkedWindow("t_Header", window, Needs::TextMemory);
  if (record == nullptr) return;
  const UInt8 color = record->TextColor;
  // A title is as wide as the text area, but never wider than the cells a line can have.
  const Int width = std::min(inclusiveCount(record->TextFirstColumn, record->TextLastColumn),
                             cellLimits(*record).columns);
  std::vector<char32_t> line = headerLine(left, right, width);
  // The last character is drawn without moving the cursor, so a title as wide as the area
  // neither wraps nor scrolls. An empty line (an area without columns) draws nothing.
  if (!line.empty()) {
    const char32_t last = line.back();
    line.pop_back();
    t_Print(window, joinedUtf8(line));
    t_PrintSymbol(window, printedCode(last), color, record->TextHpos, record->TextVpos);
  }
  if (inclusiveCount(record->TextFirstLine, record->TextLastLine) > 1) {
    t_Cr(window);
  } else {
    t_Htab(window, 1);
  }
}

void t_TextHline(UInt8 window, Int firstColumn, Int lastColumn, Int line, UInt8 code) {
  t_Window* record = checkedWindow("t_TextHline", window, Needs::TextMemory);
  if (record == nullptr) return;
  drawHline(window, *record, firstColumn, lastColumn, line, code);
}

void t_TextLine(UInt8 window) {
  t_Window* record = checkedWindow("t_TextLine", window, Needs::TextMemory);
  if (record == nullptr) return;
  drawHline(window, *record, record->TextHpos, record->TextLastColumn, record->TextVpos,
            LineSymbol);
  t_Cr(window);
}

}  // namespace rvtools
