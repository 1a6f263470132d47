// SPDX-License-Identifier: MIT
// Tones and music on the desktop host: without an audio device the host says so and music takes
// its time in silence; the sink's source hands out exactly the samples the runtime makes, as
// bytes, whatever sizes the sink reads.
#include <QElapsedTimer>
#include <QMediaDevices>
#include <vector>

#include "shell/tone_output.hpp"
#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

class PulledHost final : public HeadlessHost {
 public:
  bool startSoundOutput() override { return true; }
};

using ShellToneTest = ShellTest;

TEST_F(ShellToneTest, WithoutAnAudioDeviceMusicTakesItsTimeInSilence) {
  if (!QMediaDevices::defaultAudioOutput().isNull()) GTEST_SKIP() << "an audio device is here";
  EXPECT_FALSE(host().startSoundOutput());
  QElapsedTimer timer;
  timer.start();
  t_Play("MF MN T240 L8 O4 CDEF");  // four eighths of a quarter second
  EXPECT_GE(timer.elapsed(), 500);
  EXPECT_LT(timer.elapsed(), 1500);
  EXPECT_EQ(logLines(), Lines{"t_Play: No audio output; the sound is silent."});
}

TEST_F(ShellToneTest, TheSourceHandsOutWholeSamplesAsBytes) {
  static PulledHost pulled;
  startFreshRuntime(pulled);
  constexpr std::size_t ToneSamples = 4800;  // 100 ms
  t_Sound(1000, 100);
  std::vector<std::int16_t> made(ToneSamples);
  pullSoundSamples(made.data(), made.size());
  ASSERT_FALSE(t_SoundBusy());

  t_Sound(1000, 100);
  shell::ToneSource source;
  std::vector<std::int16_t> read(ToneSamples);
  char* bytes = reinterpret_cast<char*>(read.data());
  EXPECT_EQ(source.read(bytes, 1), 0);
  EXPECT_EQ(source.read(bytes, 3), 2);
  EXPECT_EQ(source.read(bytes + 2, 7), 6);
  const qint64 rest = static_cast<qint64>(ToneSamples - 4) * 2;
  EXPECT_EQ(source.read(bytes + 8, rest - 1), rest - 2);
  EXPECT_TRUE(t_SoundBusy());  // one sample to go
  EXPECT_EQ(source.read(bytes + 8 + rest - 2, 2), 2);
  EXPECT_FALSE(t_SoundBusy());
  EXPECT_EQ(read, made);
}

}  // namespace
}  // namespace rvtools::testing
