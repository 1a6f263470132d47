// SPDX-License-Identifier: MIT
// The drop demo with no pauses on the headless host: from the first drop until the tub is
// full, reported as drops per second.
#include <benchmark/benchmark.h>

#include "demo/kessvind.hpp"
#include "setup.hpp"

namespace rvtools::bench {
namespace {

void BM_DropDemoFill(benchmark::State& state) {
  Int drops = 0;
  for (auto _ : state) {
    state.PauseTiming();
    prepareTextWindow(24);
    t_Graphic(0, true);
    t_LoResOffset(0, 0, 10);
    kessvind::drawScene();
    state.ResumeTiming();
    drops += kessvind::runDrops(kessvind::Settings{});
  }
  state.counters["drops_per_second"] =
      benchmark::Counter(static_cast<double>(drops), benchmark::Counter::kIsRate);
  state.counters["drops_per_fill"] = static_cast<double>(drops) / state.iterations();
}
BENCHMARK(BM_DropDemoFill)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace rvtools::bench
