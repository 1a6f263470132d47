// SPDX-License-Identifier: MIT
// The creation of the runtime's memory: t_InitMemory names the program thread, creates the
// video memory and the eight window records, builds the menu actions and scans the menus. It
// runs once, on the first t_InitWindow or whichever operation needs the records first.
#include <cstddef>

#include "input/menus.hpp"
#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/runtime.hpp"

#if defined(__SANITIZE_THREAD__)
#define RVTOOLS_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define RVTOOLS_THREAD_SANITIZER 1
#endif
#endif

#ifdef RVTOOLS_THREAD_SANITIZER
// ThreadSanitizer's runtime provides this: it reports no race on [address, address + size).
extern "C" void AnnotateBenignRaceSized(const char* file, int line, const volatile void* address,
                                        std::size_t size, const char* description);
#endif

namespace rvtools {
namespace {

// The bytes of the video memory are the one intended race: the program thread draws into them
// while the GUI or refresh thread composes a window's picture from them, and a torn frame is
// accepted. Under ThreadSanitizer this tells the checker so for exactly those bytes, whichever
// code reads or writes them and whether or not the reading stack is still in its history. The
// window records, the queues and every other object lie outside the range and stay checked.
// The bytes are never freed (VideoMemory is never destroyed, and assigning the same size again
// keeps its storage), so the range never comes to hold another object; a range announced twice
// is one range to the checker.
void declareVideoMemoryTheIntendedRace() {
#ifdef RVTOOLS_THREAD_SANITIZER
  AnnotateBenignRaceSized(__FILE__, __LINE__, VideoMemory.data(), VideoMemory.size(),
                          "the video memory, composed while the program draws");
#endif
}

}  // namespace

void t_InitMemory() {
  if (MemoryInitStarted) return;
  logLine("t_InitMemory: Start.");
  MemoryInitStarted = true;
  if (CurrentThreadNumber() == 2) nameCurrentThread("Main Program");
  HighMemory = TopOfVideoMemory;
  VideoMemory.assign(VideoMemorySize, 0xFF);
  declareVideoMemoryTheIntendedRace();
  for (t_Window& record : Windows) record = t_Window{};
  buildMenuActions();
  scanMenus();
  MemoryInitialized = true;
  logLine("t_InitMemory: End.");
}

}  // namespace rvtools
