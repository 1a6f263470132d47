// SPDX-License-Identifier: MIT
// Window image composition: a 1280 x 800 window at each depth composed into one reused buffer
// (BM_WindowImage, the way a view draws every frame) and into a freshly allocated image
// (BM_WindowImageAllocating), beside a memcpy of the 4,096,000 bytes that one image holds.
#include <benchmark/benchmark.h>

#include <cstring>
#include <optional>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int PictureWidth = 1280;
constexpr Int PictureHeight = 800;
constexpr Int ImageBytes = PictureWidth * PictureHeight * 4;

// Window 0, visible, at `depth` bits, its graphic memory filled with a varied pattern.
void prepareVisibleWindow(Int depth) {
  prepareTextWindow(depth, PictureWidth / 16, PictureHeight / 32);
  Windows[0].Visible = true;
  for (Int a = Windows[0].MemoryStart; a <= Windows[0].MemoryEnd; ++a) {
    VideoMemory[a] = static_cast<UInt8>(a * 37 + (a >> 9));
  }
}

void BM_WindowImage(benchmark::State& state) {
  prepareVisibleWindow(state.range(0));
  std::vector<UInt8> pixels(ImageBytes);
  for (auto _ : state) {
    const bool made =
        t_WindowImageInto(0, pixels.data(), pixels.size(), PixelOrder::AlphaRedGreenBlue);
    benchmark::DoNotOptimize(made);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * ImageBytes);
}
BENCHMARK(BM_WindowImage)->Arg(1)->Arg(4)->Arg(8)->Arg(16)->Arg(24)->Arg(32);

void BM_WindowImageNative(benchmark::State& state) {
  prepareVisibleWindow(state.range(0));
  std::vector<UInt8> pixels(ImageBytes);
  for (auto _ : state) {
    const bool made = t_WindowImageInto(0, pixels.data(), pixels.size(), PixelOrder::NativeArgb32);
    benchmark::DoNotOptimize(made);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * ImageBytes);
}
BENCHMARK(BM_WindowImageNative)->Arg(24)->Arg(32);

void BM_WindowImageAllocating(benchmark::State& state) {
  prepareVisibleWindow(state.range(0));
  for (auto _ : state) {
    std::optional<t_Image> image = t_WindowImage(0);
    benchmark::DoNotOptimize(image);
  }
  state.SetBytesProcessed(state.iterations() * ImageBytes);
}
BENCHMARK(BM_WindowImageAllocating)->Arg(24);

BENCHMARK(copyBaseline)->Name("BM_Memcpy")->Arg(ImageBytes);

}  // namespace
}  // namespace rvtools::bench
