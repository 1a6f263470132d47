// SPDX-License-Identifier: MIT
// rvtools: display: window images, low-resolution and pixel graphics, colours and the refresh.
//
// A window's picture is its graphic memory; `t_WindowImage` turns it into four bytes a pixel
// (alpha, red, green, blue). Low-resolution graphics live in the text cells: colour blocks of
// two points a cell, or quarter blocks of 2 x 2 points. Pixel graphics draw straight into the
// picture with a pen of the window's own. The refresh thread asks each view to redraw at its
// window's refresh rate.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Window image composition

// Width x Height pixels, rows from the top, bytes alpha, red, green, blue.
struct t_Image {
  Int Width = 0;
  Int Height = 0;
  std::vector<UInt8> Pixels;
};

// The window's picture; nothing when the window is not initialised or not visible.
std::optional<t_Image> t_WindowImage(UInt8 window);

// The byte order that `t_WindowImageInto` writes.
enum class PixelOrder {
  AlphaRedGreenBlue,  // bytes A, R, G, B, as t_WindowImage
  NativeArgb32,       // 32-bit words 0xAARRGGBB in the machine's byte order
};

// Composes the picture straight into a caller's buffer of Width x Height x 4 bytes, so that a
// view reuses one buffer for every frame. Returns false, as t_WindowImage returns nothing.
bool t_WindowImageInto(UInt8 window, UInt8* pixels, std::size_t byteCount, PixelOrder order);

// ---------------------------------------------------------------------------------------------
// Graphic modes and low-resolution plotting

void t_Graphic(UInt8 window, bool full);                    // sets the area and blanks the screen
void t_FullArea(UInt8 window);                              // text area = whole window
void t_MixedArea(UInt8 window);                             // text area = the last five lines
void t_Plot(UInt8 window, Int x, Int y);                    // a point in the foreground colour
void t_PlotHalfSize(UInt8 window, Int x, Int y, bool set);  // a quarter-block point
void t_PlotString(UInt8 window, Int x, Int y, const std::string& pattern);  // "*" are points
void t_LoResOffset(UInt8 window, Int x, Int y);  // added to every plot position
Int t_Scrn(UInt8 window, Int x, Int y);          // colour of a point, or -1
void t_InvertRect(UInt8 window, Int firstColumn, Int firstLine, Int lastColumn, Int lastLine);
std::string t_GetScreen(UInt8 window, const std::string& separator);  // the text screen
// The colour bytes of the text screen, line by line: two upper-case hexadecimal digits a cell,
// a blank between cells, a line feed after each line. Empty, with t_GetScreen's log line, for
// a window without text memory.
std::string screenColorText(UInt8 window);

// ---------------------------------------------------------------------------------------------
// Colours

void t_Color(UInt8 window, Int color);        // foreground of text and plots
void t_ColorBorder(UInt8 window, Int color);  // the border around the picture

// ---------------------------------------------------------------------------------------------
// Pixel graphics
//
// Coordinates are pixels of the picture from its upper left corner, as ClickX and ClickY report
// them; what lies outside the picture is cut away. The window's pen lands as a fully inked glyph
// pixel of its colour would at the window's depth. Pixel operations leave text memory alone.

void t_HColor(UInt8 window, Int color);                        // the pen: a palette colour
void t_HColorRGB(UInt8 window, Int red, Int green, Int blue);  // the pen: each part 0..255
void t_HPlot(UInt8 window, Int x, Int y);                      // one pixel
void t_HLine(UInt8 window, Int x1, Int y1, Int x2, Int y2);    // both ends included
void t_HRect(UInt8 window, Int x1, Int y1, Int x2, Int y2, bool filled);  // corners included
void t_HCircle(UInt8 window, Int x, Int y, Int radius, bool filled);
void t_HFill(UInt8 window, Int x, Int y);  // the 4-connected region of (x, y)'s stored value
Int t_HPixel(UInt8 window, Int x, Int y);  // the colour shown, 0xRRGGBB, or -1
void t_HText(UInt8 window, Int x, Int y, const std::string& text);  // ink only, in the pen
t_Image t_HGet(UInt8 window, Int x, Int y, Int width, Int height);  // as t_WindowImage
void t_HPut(UInt8 window, Int x, Int y, const t_Image& image);      // alpha 0 is left out

// ---------------------------------------------------------------------------------------------
// Display refresh

void t_WindowAutoUpdateProcess();                  // the refresh loop, on a thread of its own
void t_WindowUpdate(UInt8 window, bool deferred);  // asks the view to redraw
// Waits until the refresh has asked the view to show the window's picture once more, so that a
// loop that draws and then waits runs at the window's RefreshRate. Returns at once for a window
// that the refresh leaves alone (AutoUpdate off, or no refresh running).
void t_WaitFrame(UInt8 window);

// Called with the window's number each time the refresh or t_WindowUpdate has asked a view to
// show its picture, on the thread that asked, after the view was asked. A recorder takes its
// frames here. An empty listener removes it.
void setFrameListener(std::function<void(UInt8 window)> listener);

}  // namespace rvtools
