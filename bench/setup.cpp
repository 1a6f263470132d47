// SPDX-License-Identifier: MIT
// Benchmark set-up on the headless host.
#include "setup.hpp"

#include <cstring>
#include <vector>

namespace rvtools::bench {

void prepareTextWindow(Int depth, Int columns, Int lines) {
  static auto* host = new HeadlessHost;
  setHost(*host);
  setLogSink([](std::string_view) {});
  if (!ToolsInitialized) initrvtools();
  t_InitMemory();
  static const t_Font font = t_LoadFontResource("MenloBold 16x32.font");
  t_InitWindow(0, depth, false, font.Width * columns, font.Height * lines, 0, 0, font, true);
}

void copyBaseline(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0));
  std::vector<UInt8> from(bytes, 7), to(bytes);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), bytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

}  // namespace rvtools::bench
