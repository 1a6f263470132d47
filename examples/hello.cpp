// SPDX-License-Identifier: MIT
// hello: the first program. It opens a window of 40 x 12 characters, clears it, greets, waits
// for a key and ends; the window stays open until the user quits.
//
//   Hello.app/Contents/MacOS/hello                     in a desktop window
//   Hello.app/Contents/MacOS/hello --terminal          in the terminal
//   Hello.app/Contents/MacOS/hello --headless --keys x --screen screen.txt
//                                                      without a display, typed at from here
// [manual hello]
#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

void hello() {
  using namespace rvtools;

  // Set-up: window 0 at 24 bits a pixel, 40 x 12 characters of the bold font, a border of 16
  // pixels. A new window's text cells hold code 255 until they are cleared: code 12 clears.
  t_InitWindow(0, 24, 40, 12, 16, "MenloBold 16x32.font");
  t_WindowFront(0);
  t_Print(0, "\f");

  // Run: code 13 (\r) ends a line.
  t_Print(0, "Hello, rvtools!\rPress a key.");
  t_GetKey(0);

  // End: "(Programm Ende)" on the last line.
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, hello);
}
// [end]
