// SPDX-License-Identifier: MIT
// Time for programs that move things on the screen: t_Timer reads a clock that only goes
// forward, whatever happens to the wall clock (unlike the host's absolute time, which event
// times and the refresh use), and t_Wait sleeps. Depends on the runtime's threads.
#include <chrono>

#include "runtime/threads.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point programStart() {
  static const Clock::time_point start = Clock::now();
  return start;
}

// Taken while the process starts, so that t_Timer counts from then and not from its first call.
[[maybe_unused]] const Clock::time_point startTaken = programStart();

}  // namespace

Int t_Timer() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - programStart())
      .count();
}

void t_Wait(Int milliseconds) {
  if (milliseconds <= 0) return;
  sleepFor(milliseconds / 1000, milliseconds % 1000 * 1000000);
}

}  // namespace rvtools
