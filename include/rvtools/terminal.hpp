// SPDX-License-Identifier: MIT
// rvtools: the terminal host, for programs in a text terminal, locally or over SSH.
//
// A program that wants the terminal always makes it its whole main:
//
//   int main(int argc, char** argv) { return rvtools::runTerminal(argc, argv, program); }
//
// rvtools::run (rvtools/shell.hpp) starts it as well, when given --terminal or when there is
// no display and standard input and output are a terminal. The graphic window in front is
// drawn cell for cell from its text memory (a window without text memory as half-block
// pixels); keys, clicks and pasted text become the events the desktop delivers. Ctrl+] opens a
// one-line menu: copy text, save picture, quit. The runtime's log goes to the file named by
// `--log <path>`, or nowhere, since standard output is the screen. The terminal is given back
// as it was on every way out: the program's end, quitting, a hang-up or termination signal,
// and a crash.
#pragma once

#include <functional>

namespace rvtools {

// Runs `entry` on the program thread with the terminal as its screen until the user leaves;
// ends the process without waiting for the program thread. Returns only when standard input
// or output is no terminal or the log file cannot be written, with a message and 1.
int runTerminal(int argc, char** argv, std::function<void()> entry);

}  // namespace rvtools
