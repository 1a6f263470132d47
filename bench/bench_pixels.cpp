// SPDX-License-Identifier: MIT
// Pixel graphics on the 1280 x 800 picture of an 80 x 25 text window: a filled rectangle over
// the whole picture at each depth and a fill of the whole empty picture, each beside a memset
// of the picture's bytes; a line of 1,000 pixels, reported a pixel at a time; and an image of
// 64 x 64 pixels with transparent holes put at 24 bits.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int Width = 1280, Height = 800;

Int pictureBytes(Int depth) {
  return Width * Height * depth / 8;
}

void BM_HRectFilled(benchmark::State& state) {
  const Int depth = state.range(0);
  prepareTextWindow(depth);
  Int colour = 1;
  for (auto _ : state) {
    t_HColor(0, colour = 3 - colour);
    t_HRect(0, 0, 0, Width - 1, Height - 1, true);
  }
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetBytesProcessed(state.iterations() * pictureBytes(depth));
}
BENCHMARK(BM_HRectFilled)->Arg(1)->Arg(4)->Arg(8)->Arg(16)->Arg(24)->Arg(32);

// The bytes of one 16 x 32 cell and of the picture at depths 1, 4, 8, 16, 24 and 32, and of one
// second of sound (96,000).
void BM_Memset(benchmark::State& state) {
  std::vector<UInt8> picture(static_cast<std::size_t>(state.range(0)));
  UInt8 value = 0;
  for (auto _ : state) {
    std::memset(picture.data(), ++value, picture.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Memset)
    ->Arg(64)
    ->Arg(256)
    ->Arg(512)
    ->Arg(1024)
    ->Arg(1536)
    ->Arg(2048)
    ->Arg(96000)
    ->Arg(pictureBytes(1))
    ->Arg(pictureBytes(4))
    ->Arg(pictureBytes(8))
    ->Arg(pictureBytes(16))
    ->Arg(pictureBytes(24))
    ->Arg(pictureBytes(32));

// A line from corner to corner of 1,000 x 800 pixels: 1,000 pixels, one an item.
void BM_HLine(benchmark::State& state) {
  prepareTextWindow(24);
  Int colour = 1;
  for (auto _ : state) {
    t_HColor(0, colour = 3 - colour);
    t_HLine(0, 0, 0, 999, Height - 1);
  }
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(BM_HLine);

// The whole picture, one region of one colour, filled in the other colour each time.
void BM_HFill(benchmark::State& state) {
  prepareTextWindow(24);
  Int colour = 1;
  for (auto _ : state) {
    t_HColor(0, colour = 3 - colour);
    t_HFill(0, Width / 2, Height / 2);
  }
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetBytesProcessed(state.iterations() * pictureBytes(24));
}
BENCHMARK(BM_HFill);

// A 64 x 64 image of changing colours, every fourth pixel transparent, put at one place.
void BM_HPut(benchmark::State& state) {
  prepareTextWindow(24);
  t_Image image{64, 64, std::vector<UInt8>(64 * 64 * 4)};
  for (Int p = 0; p < 64 * 64; ++p) {
    UInt8* pixel = image.Pixels.data() + 4 * p;
    pixel[0] = p % 4 == 3 ? 0 : 255;
    pixel[1] = static_cast<UInt8>(4 * (p % 64));
    pixel[2] = static_cast<UInt8>(4 * (p / 64));
    pixel[3] = 128;
  }
  for (auto _ : state) t_HPut(0, 600, 400, image);
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetItemsProcessed(state.iterations() * 64 * 64);
}
BENCHMARK(BM_HPut);

}  // namespace
}  // namespace rvtools::bench
