// SPDX-License-Identifier: MIT
// Scrolling: one t_ScrollUp per iteration of an 80 x 25 window at 24 bits (the block-moving
// scroll plus the blanking of the freed line), beside one memmove of the same byte count inside
// one buffer, shifted by one text line as the scroll shifts its pixels.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int Columns = 80, Lines = 25, Depth = 24;
constexpr Int GlyphWidth = 16, GlyphHeight = 32;
constexpr Int TextLineBytes = Depth * GlyphHeight * Columns * GlyphWidth / 8;
// Characters and colour bytes of every line but the first, and their pixels.
constexpr Int ScrolledBytes = 2 * Columns * (Lines - 1) + TextLineBytes * (Lines - 1);

void BM_ScrollUp(benchmark::State& state) {
  prepareTextWindow(Depth, Columns, Lines);
  for (auto _ : state) t_ScrollUp(0);
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetBytesProcessed(state.iterations() * ScrolledBytes);
}
BENCHMARK(BM_ScrollUp);

void BM_Memmove(benchmark::State& state) {
  std::vector<UInt8> buffer(ScrolledBytes + TextLineBytes, 1);
  for (auto _ : state) {
    std::memmove(buffer.data(), buffer.data() + TextLineBytes, ScrolledBytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * ScrolledBytes);
}
BENCHMARK(BM_Memmove);

}  // namespace
}  // namespace rvtools::bench
