// SPDX-License-Identifier: MIT
// Internal: the runtime's own thread registry.
//
// Threads are numbered in the order in which they first meet the registry: the interface
// thread asks first at launch and becomes 1, the first program thread 2, the refresh thread 3.
// The registry also keeps each thread's name; runningProgramThreads (rvtools/platform.hpp)
// counts the program threads that run.
#pragma once

#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// A description of the calling thread in the form "<Thread: 0x...>{number = N, name = ...}".
std::string currentThreadDescription();

// Names the calling thread; the system keeps at most 15 bytes of it.
void nameCurrentThread(const std::string& name);

// Sleeps the calling thread for the given seconds and nanoseconds.
void sleepFor(Int seconds, Int nanoseconds);

}  // namespace rvtools
