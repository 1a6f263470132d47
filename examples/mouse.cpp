// SPDX-License-Identifier: MIT
// mouse: clicks and a menu item for the program. Each click puts a star into the cell under the
// mouse and says where it was; Program > Program Action ends the program. The mouse and menu
// handlers run on worker threads, so they only wake the program, which takes the events off
// their queues and draws.
//
//   Mouse.app/Contents/MacOS/mouse
// and, without a display, with two clicks and the menu item given on its command line:
//   mouse --headless --click 24,120 --click 300,200 --menu 'Program Action' --screen out.txt
#include <atomic>
#include <optional>
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;
constexpr Int StatusLine = 11;

// [manual mouse-handlers]
// Counts the handlers' calls; the program sleeps until it changes.
std::atomic<int> wakeUps{0};

void wakeProgram() {
  ++wakeUps;
  wakeUps.notify_one();
}
// [end]

// [manual mouse-click]
// ClickX and ClickY count pixels of the drawing area from its top left corner; a cell of the
// 16 x 32 font is 16 pixels wide and 32 high.
void showClick(const t_Event& click, int count) {
  if (click.ClickX < 0 || click.ClickY < 0) return;  // on the border
  t_Htab(Screen, click.ClickX / 16 + 1);
  t_Vtab(Screen, click.ClickY / 32 + 1);
  t_Print(Screen, "*");
  t_Vtab(Screen, StatusLine);
  t_Htab(Screen, 1);
  t_Print(Screen, "Click "s + std::to_string(count) + " at x = " + std::to_string(click.ClickX) +
                      ", y = " + std::to_string(click.ClickY));
  t_ClearEndOfLine(Screen);
}
// [end]

}  // namespace

void mouse() {
  // Set-up: the handlers first, so that no click finds the program without them.
  // [manual mouse-setup]
  t_SetMouseHandler(wakeProgram);
  t_SetMenuHandler(wakeProgram);
  // [end]
  t_InitWindow(0, 24, 40, 12, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");
  t_Color(Screen, 15);
  t_Print(Screen, "Click into the window.\rProgram > Program Action ends.");
  t_Color(Screen, 13);

  // Run: sleep until a handler wakes the program, then take every event that is waiting.
  // [manual mouse-loop]
  int clicks = 0;
  bool running = true;
  for (int seen = 0; running;) {
    wakeUps.wait(seen);
    seen = wakeUps.load();
    while (const std::optional<t_Event> click = t_TakeMouseEvent()) showClick(*click, ++clicks);
    while (const std::optional<t_MenuEvent> choice = t_TakeMenuEvent()) {
      if (choice->ItemAction == 0) running = false;  // an item for the program
    }
  }
  // [end]

  // End.
  t_Vtab(Screen, StatusLine - 1);
  t_Htab(Screen, 1);
  t_Print(Screen, "Program Action chosen.");
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, mouse);
}
