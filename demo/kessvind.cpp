// SPDX-License-Identifier: MIT
// Kessvind, the drop demo: single bits drip from the top of the screen into a tub, pile up,
// slide sideways off each other and the specks, and come to rest, until the tub is full.
//
// It is an ordinary user program of rvtools: one window of 80 x 25 characters at 24 bits, a
// header, two questions, then low-resolution graphics on an 80 x 50 grid moved down by ten rows.
// It reads top to bottom in three sections: set-up, run, end.
#include "demo/kessvind.hpp"

#include <time.h>

#include <string>

#include "rvtools/rvtools.hpp"

namespace kessvind {

using rvtools::Int;
using rvtools::UInt8;

namespace {

// The window opened first; every call but the window frame operations and the quit goes to
// it through DefaultWindow, which that first t_InitWindow sets.
constexpr UInt8 FirstWindow = 0;

UInt8 screen() {
  return rvtools::DefaultWindow;
}

// The title in block letters, five rows of 51 characters; an asterisk is a point. Bits are only
// dropped into columns whose top point is free, and the top row leaves column 41 free on
// purpose: with columns 38 and 41 both shut, the last gap in row 5 could wander between 39 and
// 40 for ever, and the tub would never count as full.
constexpr const char* Banner[5] = {
    " *   *  ****   ***   ***   *   *  ***  *   *  **** ",
    " *  *   *     *     *      *   *   *   **  *  *   *",
    " ***    ***    **    **    *   *   *   * * *  *   *",
    " *  *   *        *     *    * *    *   *  **  *   *",
    " *   *  ****  ***   ***      *    ***  *   *  **** ",
};

constexpr Int BannerLeft = 15;
constexpr Int SpeckCount = 600;
constexpr Int CounterColumn = 52;

// Palette colours of the scene.
constexpr Int Erase = 0;
constexpr Int TubColour = 4;
constexpr Int BannerColour = 8;
constexpr Int SpeckColour = 11;
constexpr Int CounterColour = 12;

bool isFree(Int x, Int y) {
  return rvtools::t_Scrn(screen(), x, y) == 0;
}

void plot(Int x, Int y, Int colour) {
  rvtools::t_Color(screen(), colour);
  rvtools::t_Plot(screen(), x, y);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Set-up: the window, the header, the questions and the scene.

void openScreen() {
  rvtools::t_InitWindow(FirstWindow, 24, 80, 25, 16, "MenloBold 16x32.font");
  rvtools::t_Graphic(screen(), true);
  rvtools::t_LoResOffset(screen(), 0, 10);
  rvtools::t_CursorHome(screen());
  rvtools::t_WindowCenter(FirstWindow);
  rvtools::t_WindowFront(FirstWindow);
  rvtools::t_Header(screen(), "Kessvind", "ein Tropfenspiel mit rvtools");
  rvtools::t_WindowFont(screen(), rvtools::t_LoadFontResource("MenloRegular 16x32.font"));
  rvtools::t_TextLine(screen());
  rvtools::t_ClearEndOfLine(screen());
  rvtools::t_Cr(screen());
  rvtools::t_ClearEndOfLine(screen());
}

Settings askSettings() {
  Settings settings;
  const std::string answer =
      rvtools::t_InputForm(screen(), "Verzögerung in hundertstel ms: ", "5000", false, 2, 5);
  settings.delay = rvtools::BytesToInteger(rvtools::TextToBytes(answer));
  // Fast runs never ask and never click.
  if (settings.delay >= 1000) {
    rvtools::t_Vtab(screen(), 4);
    rvtools::t_Print(screen(), "Tropfen-Sound ausgeben [J/N] ? ");
    rvtools::t_ClearEndOfLine(screen());
    settings.sound = rvtools::t_GetYesNo(screen(), 1, true) == 1;
  }
  rvtools::t_Cr(screen());
  rvtools::t_Vtab(screen(), 4);
  rvtools::t_Print(screen(), "Schauen Sie zu, wie die Bits in die Zolbe tropfen:");
  rvtools::t_ClearEndOfLine(screen());
  return settings;
}

void drawScene() {
  rvtools::t_Color(screen(), TubColour);
  for (Int x : {0, 1, 78, 79}) {
    for (Int y = 0; y <= 79; ++y) rvtools::t_Plot(screen(), x, y);
  }
  for (Int y : {38, 39}) {
    for (Int x = 0; x <= 79; ++x) rvtools::t_Plot(screen(), x, y);
  }
  rvtools::t_Color(screen(), BannerColour);
  for (Int row = 0; row < 5; ++row) rvtools::t_PlotString(screen(), BannerLeft, row, Banner[row]);
  rvtools::t_Color(screen(), SpeckColour);
  for (Int speck = 0; speck < SpeckCount; ++speck) {
    const Int x = rvtools::t_Random(75) + 2;
    const Int y = rvtools::t_Random(29) + 8;
    rvtools::t_Plot(screen(), x, y);
  }
}

// ---------------------------------------------------------------------------------------------
// Run: one bit after another until the tub is full.

namespace {

// One falling bit: where it is, where it was last drawn, and its colour.
struct Bit {
  Int x = 0, y = 0;
  Int oldX = 0, oldY = 0;
  Int colour = 1;
};

// A delay unit is a hundredth of a millisecond.
void pause(const Settings& settings) {
  if (settings.delay < 1) return;
  const timespec duration{static_cast<time_t>(settings.delay / 100000),
                          static_cast<long>(settings.delay % 100000) * 10000};
  nanosleep(&duration, nullptr);
}

void land(const Settings& settings) {
  if (settings.delay < 1) return;
  if (settings.sound) rvtools::t_PlayClick();
  pause(settings);
}

// Erases the bit where it was drawn last and draws it where it is now.
void moveBit(Bit& bit) {
  plot(bit.oldX, bit.oldY, Erase);
  bit.oldX = bit.x;
  bit.oldY = bit.y;
  plot(bit.x, bit.y, bit.colour);
}

Bit newBit() {
  Bit bit;
  do {
    bit.x = rvtools::t_Random(79);
  } while (!isFree(bit.x, 0));  // a wall column
  bit.y = 5;
  Int colour;
  do {
    colour = rvtools::t_Random(14);
  } while (colour == 3 || colour == 10);  // never the tub's or the specks' colour
  bit.colour = colour + 1;
  bit.oldX = bit.x;
  bit.oldY = bit.y;
  return bit;
}

void showCount(Int count) {
  rvtools::t_Htab(screen(), CounterColumn);
  rvtools::t_Color(screen(), CounterColour);
  rvtools::t_Print(screen(), count == 0 ? std::string("1 Bit in der Zolbe.")
                                        : std::to_string(count + 1) + " Bits in der Zolbe.");
}

void fall(Bit& bit, const Settings& settings) {
  while (isFree(bit.x, bit.y + 1)) {
    ++bit.y;
    moveBit(bit);
    pause(settings);
  }
  land(settings);
}

// Lets the bit fall, then slide off whatever it landed on, until it rests.
void settle(Bit& bit, const Settings& settings) {
  fall(bit, settings);
  while (!(!isFree(bit.x - 1, bit.y) && !isFree(bit.x + 1, bit.y))) {
    Int direction = rvtools::t_Random(1) == 1 ? -1 : 1;
    if (!isFree(bit.x + direction, bit.y)) direction = -direction;
    for (;;) {
      bit.x += direction;
      moveBit(bit);
      if (isFree(bit.x, bit.y + 1)) {
        pause(settings);
        fall(bit, settings);
        break;
      }
      if (!isFree(bit.x + direction, bit.y)) {
        land(settings);
        return;
      }
      pause(settings);
    }
  }
}

}  // namespace

Int runDrops(const Settings& settings) {
  for (Int count = 0;; ++count) {
    Bit bit = newBit();
    if (!isFree(39, 5) && !isFree(40, 5)) {
      rvtools::t_Log("PlotDrops: Bit Zolbe voll.");
      return count;
    }
    showCount(count);
    settle(bit, settings);
  }
}

// ---------------------------------------------------------------------------------------------
// The whole program, and its end.

void program() {
  // Edit > Paste types the pasted text, so that a delay can be pasted at the prompt.
  rvtools::t_SetPasteHandler(rvtools::t_PasteAsKeys);
  openScreen();
  const Settings settings = askSettings();
  drawScene();
  runDrops(settings);
  rvtools::t_QuitProgram(FirstWindow);
}

}  // namespace kessvind
