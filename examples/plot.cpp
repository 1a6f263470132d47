// SPDX-License-Identifier: MIT
// plot: y = sin x drawn with pixels, with axes, ticks and labels. The axes and the curve are
// pixel drawings (t_HLine with the pen of t_HColor); the title and the labels are text, printed
// into cells that no drawing crosses, since printing a cell repaints it from its glyph.
//
//   Plot.app/Contents/MacOS/plot
//   Plot.app/Contents/MacOS/plot --headless --screen screen.txt --picture plot.png
#include <cmath>
#include <numbers>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;

namespace {

constexpr UInt8 Screen = 0;

// The picture is 40 x 15 cells of 16 x 32 pixels: 640 x 480. The plot area (text lines 2 to 13,
// right of the two columns of the labels of y) leaves line 1 to the title, line 14 to the labels
// of x and line 15 to the end of the program. The ticks of y = 1 and -1 lie mid their labels.
constexpr Int Left = 33, Right = 623, Top = 40, Bottom = 407;
constexpr Int CentreX = (Left + Right + 1) / 2, CentreY = (Top + Bottom + 1) / 2;
constexpr double XRange = 2 * std::numbers::pi;  // x runs from -2 pi to 2 pi
constexpr double Amplitude = 176;                // pixels for y = 1: mid line 2

Int pixelX(double x) {
  return CentreX + std::lround(x / XRange * (Right - CentreX));
}

Int pixelY(double y) {
  return CentreY - std::lround(y * Amplitude);
}

// [manual plot-axes]
// The axes in light grey, with a tick at every multiple of pi and at y = 1 and y = -1.
void drawAxes() {
  t_HColor(Screen, 10);
  t_HLine(Screen, Left, CentreY, Right, CentreY);
  t_HLine(Screen, CentreX, Top, CentreX, Bottom);
  for (int k = -2; k <= 2; ++k) {
    const Int x = pixelX(k * std::numbers::pi);
    t_HLine(Screen, x, CentreY - 4, x, CentreY + 4);
  }
  for (const double y : {1.0, -1.0})
    t_HLine(Screen, CentreX - 4, pixelY(y), CentreX + 4, pixelY(y));
}
// [end]

// [manual plot-curve]
// The curve as short lines between samples two pixels apart, in yellow.
void drawCurve() {
  t_HColor(Screen, 13);
  Int lastX = Left, lastY = pixelY(std::sin(-XRange));
  for (Int x = Left + 2; x <= Right; x += 2) {
    const double value = std::sin((x - CentreX) * XRange / (Right - CentreX));
    const Int y = pixelY(value);
    t_HLine(Screen, lastX, lastY, x, y);
    lastX = x;
    lastY = y;
  }
}
// [end]

void printAt(Int column, Int line, const char* text) {
  t_Vtab(Screen, line);
  t_Htab(Screen, column);
  t_Print(Screen, text);
}

}  // namespace

void plot() {
  // Set-up: a window of 40 x 15 cells, cleared.
  t_InitWindow(Screen, 24, 40, 15, 16, "MenloRegular 16x32.font");
  t_WindowFront(Screen);
  t_Print(Screen, "\f");

  // Run: title and labels as text, then the drawing.
  printAt(17, 1, "y = sin x");
  printAt(1, 2, "1");
  printAt(1, 13, "-1");
  printAt(3, 14, "-2pi");
  printAt(21, 14, "0");
  printAt(38, 14, "2pi");
  drawAxes();
  drawCurve();

  // End.
  t_QuitProgram(Screen);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, plot);
}
