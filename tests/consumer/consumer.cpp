// SPDX-License-Identifier: MIT
// A program of a project that builds rvtools as a subdirectory: it prints one line into a
// window without a display and ends; run with --screen <file>, it leaves that line there.
#include <rvtools/headless.hpp>
#include <rvtools/rvtools.hpp>

int main(int argc, char** argv) {
  return rvtools::runHeadless(argc, argv, [] {
    rvtools::t_InitWindow(0, 8, 24, 2, 0, "MenloRegular 16x32.font");
    rvtools::t_Print(0, "Built as a subdirectory.");
    rvtools::t_QuitProgram(0);
  });
}
