// SPDX-License-Identifier: MIT
// Benchmark set-up: a runtime on the headless host, window 0 initialised at a chosen depth with
// the bold 16 x 32 font, the log silenced.
#pragma once

#include <benchmark/benchmark.h>

#include "rvtools/headless.hpp"
#include "rvtools/rvtools.hpp"

namespace rvtools::bench {

// Window 0 with columns x lines cells of the bold font at `depth` bits, freshly cleared.
void prepareTextWindow(Int depth, Int columns = 80, Int lines = 25);

// The baseline of the benchmarks that move a picture's bytes: a memcpy of state.range(0)
// bytes. Each file registers it under a name of its own with the byte count it compares with.
void copyBaseline(benchmark::State& state);

}  // namespace rvtools::bench
