// SPDX-License-Identifier: MIT
// Glyph rendering: one 16 x 32 cell per iteration at each depth, beside a memset of the bytes
// that one cell covers.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int CellPixels = 16 * 32;

Int cellBytes(Int depth) {
  return CellPixels * depth / 8;
}

// One cell, redrawn with a changing character, so that the cell stays in the cache as the
// memset's bytes do; the figure is the cost of rendering, not of the memory behind it.
void BM_PrintSymbol(benchmark::State& state) {
  const Int depth = state.range(0);
  prepareTextWindow(depth);
  UInt8 character = 'A';
  for (auto _ : state) {
    t_PrintSymbol(0, character, 0xC2, 40, 12);
    character = character == 'Z' ? 'A' : character + 1;
  }
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetBytesProcessed(state.iterations() * cellBytes(depth));
}
BENCHMARK(BM_PrintSymbol)->Arg(1)->Arg(4)->Arg(8)->Arg(16)->Arg(24)->Arg(32);

void BM_Memset(benchmark::State& state) {
  std::vector<UInt8> cell(static_cast<std::size_t>(state.range(0)));
  UInt8 value = 0;
  for (auto _ : state) {
    std::memset(cell.data(), ++value, cell.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Memset)->Arg(64)->Arg(256)->Arg(512)->Arg(1024)->Arg(1536)->Arg(2048);

}  // namespace
}  // namespace rvtools::bench
