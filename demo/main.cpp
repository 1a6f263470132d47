// SPDX-License-Identifier: MIT
// The drop demo as a desktop application: the Qt host runs Kessvind on the program thread.
#include "demo/kessvind.hpp"
#include "rvtools/shell.hpp"

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, kessvind::program);
}
