// SPDX-License-Identifier: MIT
// The creation of the runtime's memory: t_InitMemory names the program thread, creates the
// video memory and the eight window records, builds the menu actions and scans the menus. It
// runs once, on the first t_InitWindow or whichever operation needs the records first.
#include "input/menus.hpp"
#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {

void t_InitMemory() {
  if (MemoryInitStarted) return;
  logLine("t_InitMemory: Start.");
  MemoryInitStarted = true;
  if (CurrentThreadNumber() == 2) nameCurrentThread("Main Program");
  HighMemory = TopOfVideoMemory;
  VideoMemory.assign(VideoMemorySize, 0xFF);
  for (t_Window& record : Windows) record = t_Window{};
  buildMenuActions();
  scanMenus();
  MemoryInitialized = true;
  logLine("t_InitMemory: End.");
}

}  // namespace rvtools
