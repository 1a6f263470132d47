// SPDX-License-Identifier: MIT
// Recording the drop demo's window (1280 x 800 pixels at 24 bits, its scene drawn): the cost of
// one frame on the refresh side (compose, compare, hand the changed rows to the queue), with a
// changed picture and with a picture whose version moved but whose pixels did not, and on the
// encoder (changed rectangle, colour table, LZW, file), beside a memcpy of the picture's
// 4,096,000 bytes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <vector>

#include "demo/kessvind.hpp"
#include "picture/frame_encoder.hpp"
#include "picture/recording.hpp"
#include "setup.hpp"

namespace rvtools::bench {
namespace {

using picture::CapturedFrame;
using picture::FrameCapture;
using picture::FrameQueue;
using picture::RecordingClock;

constexpr int PictureWidth = 1280;
constexpr int PictureHeight = 800;
constexpr Int PictureBytes = Int{PictureWidth} * PictureHeight * 4;

void prepareDemoWindow() {
  prepareTextWindow(24);
  Windows[0].Visible = true;
  t_Graphic(0, true);
  t_LoResOffset(0, 0, 10);
  kessvind::drawScene();
}

// One step of a falling bit: a point in the tub in one colour or another, and the count above.
void dropStep(Int step) {
  t_Color(0, 1 + step % 2);
  t_Plot(0, 10 + step % 60, 12 + step / 60 % 20);
  t_Htab(0, 52);
  t_Vtab(0, 4);
  t_Color(0, 12);
  t_Print(0, std::to_string(step) + " Bits");
}

void BM_RecordTakeFrame(benchmark::State& state) {
  const bool changes = state.range(0) == 1;
  prepareDemoWindow();
  FrameQueue queue(8);
  FrameCapture capture(0, PictureWidth, PictureHeight, queue);
  capture.take(RecordingClock::now());
  queue.recycle(*queue.take());
  Int step = 0;
  for (auto _ : state) {
    if (changes) {
      dropStep(step++);
    } else {
      t_Color(0, 4);
      t_Plot(0, 0, 0);  // the tub's wall, in the tub's colour: a new version, the same pixels
    }
    capture.take(RecordingClock::now());
    if (changes) queue.recycle(*queue.take());
  }
  state.SetBytesProcessed(state.iterations() * PictureBytes);
}
BENCHMARK(BM_RecordTakeFrame)->ArgName("changed")->Arg(1)->Arg(0);

// Frames as the refresh hands them over, 33 ms apart.
std::vector<CapturedFrame> demoFrames(int count) {
  prepareDemoWindow();
  FrameQueue queue(count + 1);
  FrameCapture capture(0, PictureWidth, PictureHeight, queue);
  std::vector<CapturedFrame> frames;
  RecordingClock::time_point time = RecordingClock::now();
  for (Int step = 0; step <= count; ++step) {
    capture.take(time);
    frames.push_back(*queue.take());
    dropStep(step);
    time += std::chrono::milliseconds(33);
  }
  return frames;
}

void BM_RecordEncodeFrame(benchmark::State& state) {
  std::vector<CapturedFrame> frames = demoFrames(64);
  const std::string path =
      (std::filesystem::temp_directory_path() / "rvtools-bench-record.gif").string();
  picture::PendingFile file(path);
  picture::FrameEncoder encoder(file, PictureWidth, PictureHeight);
  encoder.add(frames.front());
  std::size_t next = 1;
  for (auto _ : state) {
    frames[next].Time = frames.front().Time + std::chrono::milliseconds(33) * encoder.pictures();
    encoder.add(frames[next]);
    next = next + 1 < frames.size() ? next + 1 : 1;
  }
  state.SetBytesProcessed(state.iterations() * PictureBytes);
}
BENCHMARK(BM_RecordEncodeFrame);

BENCHMARK(copyBaseline)->Name("BM_RecordMemcpy")->Arg(PictureBytes);

}  // namespace
}  // namespace rvtools::bench
