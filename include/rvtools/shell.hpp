// SPDX-License-Identifier: MIT
// rvtools: the desktop host on Qt.
//
// A desktop program's whole main is one call:
//
//   int main(int argc, char** argv) { return rvtools::run(argc, argv, program); }
//
// It builds the application with its eight graphic windows (hidden until the program shows
// them), the pasteboard, virtual printer, system console, preferences and main windows, starts
// `program` on the program thread and runs the event loop until the user quits. Quitting never
// waits for the program thread: the process ends as soon as the event loop has finished.
//
// The same call runs the program in the terminal instead (rvtools/terminal.hpp) when given
// "--terminal", or when there is no display (neither DISPLAY nor WAYLAND_DISPLAY) and standard
// input and output are a terminal; "--headless" runs it without a screen (rvtools/headless.hpp).
#pragma once

#include <functional>

namespace rvtools {

int run(int argc, char** argv, std::function<void()> entry);

}  // namespace rvtools
