// SPDX-License-Identifier: MIT
// A program of a user's project: it prints one line into a window without a display and ends,
// saying how the project found rvtools; run with --screen <file>, it leaves that line there.
#include <rvtools/headless.hpp>
#include <rvtools/rvtools.hpp>

int main(int argc, char** argv) {
  return rvtools::runHeadless(argc, argv, [] {
    rvtools::t_InitWindow(0, 8, 40, 2, 0, "MenloRegular 16x32.font");
    rvtools::t_Print(0, "\fBuilt with " CONSUMER_BUILT_AS ".");
    rvtools::t_QuitProgram(0);
  });
}
