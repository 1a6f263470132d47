// SPDX-License-Identifier: MIT
// rvtools: text output on a graphic window.
//
// Characters come from bitmap fonts loaded from font resource files. `t_PrintSymbol` is the one
// place where a character becomes pixels; printing, control codes, display modes, the cursor,
// scrolling and clearing all end in it. Text positions count from 1.
#pragma once

#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Font resources

t_Font t_LoadFontResource(const std::string& fileName);  // from the bundle's resources
t_Font EmptyFont();                                      // the font of "no font"
void t_WindowFont(UInt8 window, const t_Font& font);     // replaces a window's font

// ---------------------------------------------------------------------------------------------
// Glyph rendering

// Draws one character cell with a colour byte (foreground high nibble, background low nibble)
// and records it in text memory.
void t_PrintSymbol(UInt8 window, UInt8 character, UInt8 color, Int column, Int line);

// ---------------------------------------------------------------------------------------------
// Cursor movement, scrolling and clearing

void t_CursorHome(UInt8 window);        // first column and line of the text area
void t_CursorEnd(UInt8 window);         // last column and line of the text area
void t_Htab(UInt8 window, Int column);  // column counted from the area's first column
void t_Vtab(UInt8 window, Int line);    // absolute line of the text memory
void t_CursorRight(UInt8 window);       // wraps to the next line
void t_CursorLeft(UInt8 window);        // wraps to the previous line
void t_CursorDown(UInt8 window);        // scrolls up below the last line
void t_CursorUp(UInt8 window);          // scrolls down above the first line
void t_Cr(UInt8 window);                // start of the next line
void t_ScrollUp(UInt8 window);          // the area moves up one line
void t_ScrollDown(UInt8 window);        // the area moves down one line
void t_ClearEndOfLine(UInt8 window);    // blanks from the cursor to the line's end
void t_ClearEndOfWindow(UInt8 window);  // blanks from the cursor to the area's end

// ---------------------------------------------------------------------------------------------
// Printing, control characters and display modes

// What a character becomes in the current display mode: the code to draw (or none) and the
// inverse flag and colour byte that the window has after drawing it.
struct t_DisplayedCharacter {
  bool Draw = false;
  Int Code = 0;
  bool Inverse = false;
  UInt8 Color = 240;
};

void t_Print(UInt8 window, const std::string& text);    // UTF-8 text with control codes
void t_Print(UInt8 window, const Text& text);           // one code per byte
void t_PrintChar(UInt8 window, UInt8 code);             // no control-code handling
void t_PrintSpc(UInt8 window, Int count);               // count blanks
void t_PrintTab(UInt8 window, Int column, UInt8 code);  // repeats code up to a column
void t_PrintControl(UInt8 window, UInt8 code);          // the action of control codes 7..31
t_DisplayedCharacter t_ApplyDisplayMode(UInt8 window, Int code);
void t_DisplayMode(UInt8 window, Int mode);       // 0 normal, 1, 2, 3, 4, 99 escape
void t_Normal(UInt8 window);                      // ink on paper
void t_Inverse(UInt8 window);                     // paper on ink
void t_Reverse(UInt8 window);                     // toggles inverse
void t_RedirectOutput(UInt8 window, Int target);  // 1 window, 2 standard output, else nowhere
void t_Header(UInt8 window, const std::string& left, const std::string& right);
void t_TextHline(UInt8 window, Int firstColumn, Int lastColumn, Int line, UInt8 code);
void t_TextLine(UInt8 window);  // a line from the cursor to the area's last column

// ---------------------------------------------------------------------------------------------
// Cursor display

void t_CursorOn(UInt8 window);    // one more request to show the cursor
void t_CursorOff(UInt8 window);   // one request fewer
void t_CursorDraw(UInt8 window);  // inverts the cursor cell

}  // namespace rvtools
