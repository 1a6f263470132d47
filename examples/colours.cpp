// SPDX-License-Identifier: MIT
// colours: the sixteen colours, escape sequences and display modes. Code 27 (escape) followed by
// one character sets the ink (@ to O), the paper (P to _), the border (n to }) or a tab stop
// (i, j, k); control codes switch inverse video and display modes; t_DisplayMode chooses a mode
// directly.
//
//   Colours.app/Contents/MacOS/colours
//   Colours.app/Contents/MacOS/colours --headless --screen screen.txt
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;

// [manual colours-escapes]
// Escape sequences: code 27, then one character.
std::string ink(int colour) {
  return std::string("\x1b") + static_cast<char>('@' + colour);
}
std::string paper(int colour) {
  return std::string("\x1b") + static_cast<char>('P' + colour);
}
std::string border(int colour) {
  return std::string("\x1b") + static_cast<char>('n' + colour);
}
const std::string TabStop = "\x1bi";  // to column 11, 21, 31, ...
// [end]

void showInkAndPaper() {
  // [manual colours-palette]
  t_Print(Screen, ink(15) + "Ink:   ");
  for (int colour = 0; colour < 16; ++colour) {
    t_Print(Screen, ink(colour) + std::to_string(colour) + " ");
  }
  t_Print(Screen, ink(15) + "\rPaper: ");
  for (int colour = 0; colour < 16; ++colour) {
    const bool dark =
        colour == 0 || colour == 2 || colour == 4 || colour == 5 || colour == 6 || colour == 8;
    const int readable = dark ? 15 : 0;
    t_Print(Screen, ink(readable) + paper(colour) + std::to_string(colour) + " ");
  }
  t_Print(Screen, ink(15) + paper(0) + "\r");
  // [end]
}

void showInverseAndTabs() {
  // [manual colours-inverse]
  // 15 turns inverse video on, 14 off, 17 toggles it.
  t_Print(Screen, "\rNormal \x0fInverse\x0e Normal \x11Reversed\x11 Normal\r");
  t_Print(Screen, "Tabs:"s + TabStop + "10" + TabStop + "20" + TabStop + "30\r");
  // [end]
}

void showDisplayModes() {
  // [manual colours-modes]
  // 20 chooses display mode 1, 31 mode 2, 19 mode 0 again.
  const std::string Mode0 = "\x13", Mode1 = "\x14", Mode2 = "\x1f";
  t_Print(Screen, "\rMode 1: "s + Mode1 + "ABC abc 123" + Mode0 + "\r");
  t_Print(Screen, "Mode 2: "s + Mode2 + "@ABCDEFGHIJKLMN`abcdefghijklm" + Mode0 + "\r");
  // Modes 3 and 4 show control codes as letters instead of acting on them.
  t_DisplayMode(Screen, 3);
  t_Print(Screen, "Mode 3: tab\there, bell\ahere");
  t_DisplayMode(Screen, 0);
  t_Print(Screen, "\r");
  t_DisplayMode(Screen, 4);
  t_Print(Screen, "Mode 4: tab\there, bell\ahere");
  t_DisplayMode(Screen, 0);
  t_Print(Screen, "\r");
  // [end]
}

}  // namespace

void colours() {
  // Set-up: a window of 48 x 16 characters with a title line.
  t_InitWindow(0, 24, 48, 16, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");
  t_Header(Screen, "Colours", "escapes and display modes");
  t_TextLine(Screen);

  // Run.
  showInkAndPaper();
  showInverseAndTabs();
  showDisplayModes();
  t_Print(Screen, border(9));

  // End.
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, colours);
}
