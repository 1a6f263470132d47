// SPDX-License-Identifier: MIT
// Quitting the program from inside: t_QuitProgram leaves a closing text on the last line of a
// window that exists, gives the refresh time to show it, logs the end and ends the calling
// thread. It uses the text area, cursor, printing and colour operations and the refresh.
#include <pthread.h>

#include <string>

#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/display.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

constexpr Int LastFrameNanoseconds = 100000000;

void showClosingText(UInt8 window) {
  t_FullArea(window);
  t_CursorEnd(window);
  t_Htab(window, 1);
  t_DisplayMode(window, 0);
  t_Normal(window);
  t_Color(window, 1);
  t_Print(window, std::string("(Programm Ende)"));
  t_WindowUpdate(window, false);
}

}  // namespace

void t_QuitProgram(UInt8 window) {
  logWrite("t_QuitProgram: Quitting current thread");
  if (host().windowHandle(window) != nullptr) {
    showClosingText(window);
    sleepFor(0, LastFrameNanoseconds);
    logPiece(" with message in window #", window);
  }
  logWrite(".\n");
  // glibc ends the thread by a forced unwind: the destructors of the program's locals run on the
  // way out, no code after the call does, and the process and its other threads carry on.
  pthread_exit(nullptr);
}

}  // namespace rvtools
