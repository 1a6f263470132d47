// SPDX-License-Identifier: MIT
// Sound: the cost of making one second of music (48,000 samples of eighth notes with their fades,
// pulled as an audio thread pulls them, 10 ms at a time), to read beside a memset of the same
// 96,000 bytes (BM_Memset/96000 of bench_pixels.cpp); and the time from t_Sound to the first
// sample of the tone handed to the headless host's audio output, which pulls every 2 ms.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr std::size_t SecondOfSamples = SoundSampleRate;
constexpr std::size_t PullSize = SoundSampleRate / 100;

// A host whose audio output the benchmark pulls itself.
class PulledHost : public HeadlessHost {
 public:
  bool startSoundOutput() override { return true; }
};

void useHost(Host& host) {
  setHost(host);
  setLogSink([](std::string_view) {});
  if (!ToolsInitialized) initrvtools();
}

void BM_SoundSynthesisOfOneSecond(benchmark::State& state) {
  static PulledHost host;
  useHost(host);
  std::vector<std::int16_t> samples(PullSize);
  for (auto _ : state) {
    t_SoundStop();
    t_Play("MB T120 L8 O3 CDEFGAB>C");
    for (std::size_t pulled = 0; pulled < SecondOfSamples; pulled += PullSize) {
      pullSoundSamples(samples.data(), samples.size());
      benchmark::DoNotOptimize(samples.data());
    }
  }
  t_SoundStop();
  state.SetBytesProcessed(state.iterations() * Int{SecondOfSamples} * 2);
}
BENCHMARK(BM_SoundSynthesisOfOneSecond)->Unit(benchmark::kMicrosecond);

// Each iteration queues a tone and waits, without sleeping, until the host has written a sample
// of it; the time between is the iteration's. The host writes its file in the temporary folder
// until the benchmarks end.
void BM_SoundFirstSampleOnHeadless(benchmark::State& state) {
  static HeadlessHost host;
  static const std::string path =
      (std::filesystem::temp_directory_path() / "rvtools_bench_sound.wav").string();
  host.setSoundFile(path);
  useHost(host);
  for (auto _ : state) {
    const std::int64_t before = host.audibleSamplesWritten();
    const auto start = std::chrono::steady_clock::now();
    t_Sound(440, 20);
    while (host.audibleSamplesWritten() == before) std::this_thread::yield();
    state.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    t_SoundStop();
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  }
}
BENCHMARK(BM_SoundFirstSampleOnHeadless)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace rvtools::bench
