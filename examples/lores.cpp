// SPDX-License-Identifier: MIT
// lores: low-resolution graphics in the cells of the text screen, and t_Scrn reading a point
// back. The window is a mixed screen: graphics above, five lines of text below. Each text cell
// holds two points, one above the other, so 40 x 15 characters give 40 x 30 points.
//
//   Lores.app/Contents/MacOS/lores
//   Lores.app/Contents/MacOS/lores --headless --screen screen.txt
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;

// [manual lores-house]
// A house in patterns: every character from 33 up is a point, a blank leaves a gap.
constexpr const char* Roof[] = {"    **", "   ****", "  ******", " ********", "**********"};
constexpr const char* Walls[] = {"**********", "*  ****  *", "*  ****  *", "****  ****",
                                 "****  ****", "****  ****", "****  ****"};

void drawHouse(Int left, Int top) {
  t_Color(Screen, 1);
  for (Int row = 0; row < 5; ++row) t_PlotString(Screen, left, top + row, Roof[row]);
  t_Color(Screen, 8);
  for (Int row = 0; row < 7; ++row) t_PlotString(Screen, left, top + 5 + row, Walls[row]);
  t_Color(Screen, 13);
  for (Int row = 6; row < 8; ++row) {
    t_PlotString(Screen, left + 1, top + row, "**    **");
  }
}
// [end]

void drawGround() {
  t_Color(Screen, 4);
  for (Int y = 16; y < 20; ++y) {
    for (Int x = 0; x < 40; ++x) t_Plot(Screen, x, y);
  }
}

// [manual lores-sun]
// In lo-res mode 2 every point is a block of 2 x 2 points.
void drawSun() {
  Windows[Screen].LoResMode = 2;
  t_Color(Screen, 13);
  t_PlotString(Screen, 16, 0, " * ");
  t_PlotString(Screen, 16, 1, "***");
  t_PlotString(Screen, 16, 2, " * ");
  Windows[Screen].LoResMode = 0;
}
// [end]

// [manual lores-scrn]
void report(Int x, Int y, const std::string& what) {
  const Int colour = t_Scrn(Screen, x, y);
  t_Print(Screen, "t_Scrn("s + std::to_string(x) + ", " + std::to_string(y) +
                      ") = " + std::to_string(colour) + ": " + what + "\r");
}
// [end]

}  // namespace

void lores() {
  // Set-up: a mixed screen, blocks above and five text lines below, the text lines cleared.
  // [manual lores-setup]
  t_InitWindow(0, 24, 40, 15, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Graphic(Screen, false);
  t_Print(Screen, "\f");
  // [end]

  // Run: draw, then read points back.
  drawGround();
  drawHouse(8, 4);
  drawSun();
  t_Color(Screen, 15);
  report(12, 17, "the ground");
  report(12, 14, "the door");
  report(34, 2, "the sun");
  report(40, 0, "beyond the grid");

  // End.
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, lores);
}
