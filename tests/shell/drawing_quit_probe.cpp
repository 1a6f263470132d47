// SPDX-License-Identifier: MIT
// A program for the repeated-quit test: it asks the application to quit once it has printed and
// drawn, and goes on printing and drawing, each round waiting for the GUI thread.
#include <QCoreApplication>
#include <string>

#include "rvtools/rvtools.hpp"
#include "rvtools/shell.hpp"

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, [] {
    using namespace rvtools;
    t_InitWindow(0, 24, 40, 12, 8, "MenloBold 16x32.font");
    t_WindowFront(0);
    for (Int round = 0;; ++round) {
      t_Print(0, "Round " + std::to_string(round) + "\r");
      t_Color(0, round);
      t_Plot(0, round % 40, round % 24);
      t_WindowUpdate(0, false);
      if (round == 0) {
        t_Log("Probe: printed and drawn.");
        // As File > Quit does: the event loop ends without asking the windows to close. The
        // host's hand-over to the GUI thread is one a thread checker can follow.
        host().runOnInterfaceThread([] { QCoreApplication::exit(0); });
      }
    }
  });
}
