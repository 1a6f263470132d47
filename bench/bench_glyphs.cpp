// SPDX-License-Identifier: MIT
// Glyph rendering: one 16 x 32 cell per iteration at each depth, beside a memset of the bytes
// that one cell covers, row by row at the picture's stride (as one run: BM_Memset of
// bench_pixels.cpp, 64 to 2,048 bytes).
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int CellWidth = 16;
constexpr Int CellHeight = 32;
constexpr Int CellPixels = CellWidth * CellHeight;
constexpr Int PictureWidth = 80 * CellWidth;

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

// The bytes that BM_PrintSymbol writes, as they lie in the 1280 x 800 picture: 32 rows of one
// cell's width at the depth, a row of the picture apart. This is the least that drawing a cell
// can cost.
void BM_MemsetCell(benchmark::State& state) {
  const Int depth = state.range(0);
  const auto rowBytes = static_cast<std::size_t>(CellWidth * depth / 8);
  const auto stride = static_cast<std::size_t>(PictureWidth * depth / 8);
  std::vector<UInt8> rows(stride * CellHeight);
  UInt8 value = 0;
  for (auto _ : state) {
    ++value;
    for (std::size_t r = 0; r < CellHeight; ++r)
      std::memset(rows.data() + r * stride, value, rowBytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * cellBytes(depth));
}
BENCHMARK(BM_MemsetCell)->Arg(1)->Arg(4)->Arg(8)->Arg(16)->Arg(24)->Arg(32);

}  // namespace
}  // namespace rvtools::bench
