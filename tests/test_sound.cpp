// SPDX-License-Identifier: MIT
// Tones and music: what the queue takes and refuses, waiting and stopping from other threads,
// and the sound itself, written by the headless host as a WAV file and measured there: pitch by
// zero crossings, lengths by the spans that are not silent, and the fades at each tone's ends.
#include <sndfile.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

#include "common.hpp"
#include "runtime/sound_queue.hpp"
#include "runtime/synthesis.hpp"

namespace rvtools::testing {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

Int millisecondsSince(SteadyClock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(SteadyClock::now() - start).count();
}

// A host whose audio output the test itself pulls: the play position stays until it does.
class PulledHost : public HeadlessHost {
 public:
  bool startSoundOutput() override { return true; }
};

PulledHost& pulledHost() {
  static PulledHost host;
  return host;
}

class SoundTest : public RuntimeTest {
 protected:
  void TearDown() override {
    t_SoundStop();
    t_Play("MF MN T120 L4 O4");
    RuntimeTest::TearDown();
  }
};

TEST_F(SoundTest, TheQueueRefusesWhatIsOutOfRangeAndDropsWhatGoesBeyondTenMinutes) {
  startFreshRuntime(pulledHost());
  t_Sound(36, 100);
  t_Sound(32768, 100);
  t_Sound(440, 0);
  t_Sound(440, -5);
  EXPECT_FALSE(t_SoundBusy());
  t_Play("MB CDX");
  EXPECT_FALSE(t_SoundBusy());
  t_Sound(440, std::numeric_limits<Int>::max());
  t_Sound(880, 1000);
  t_Play("MB C");
  EXPECT_TRUE(t_SoundBusy());
  EXPECT_EQ(queuedToneFrequencies(), std::vector<double>{440});
  EXPECT_EQ(logLines(), (Lines{"t_Sound: Frequency 36 is out of range (37..32767).",
                               "t_Sound: Frequency 32768 is out of range (37..32767).",
                               "t_Play: Illegal music at position 6.",
                               "t_Sound: The sound queue is full; the rest is dropped.",
                               "t_Sound: The sound queue is full; the rest is dropped.",
                               "t_Play: The sound queue is full; the rest is dropped."}));
  t_SoundStop();
  EXPECT_FALSE(t_SoundBusy());
  EXPECT_TRUE(queuedToneFrequencies().empty());
}

// Without audio output the queue plays silently in real time: a text says so once, and music
// in MF waits until it and the music in MB before it have played.
TEST_F(SoundTest, WithoutAudioOutputMusicTakesItsTimeInSilence) {
  static HeadlessHost silentHost;
  startFreshRuntime(silentHost);
  const auto start = SteadyClock::now();
  t_Play("MB T240 L8 O3 CDE");
  EXPECT_LT(millisecondsSince(start), 100);
  t_Play("MF F");  // the fourth eighth of a quarter second
  const Int elapsed = millisecondsSince(start);
  EXPECT_GE(elapsed, 499);
  EXPECT_LT(elapsed, 700);
  t_Sound(440, 20);
  EXPECT_TRUE(t_SoundBusy());
  t_SoundWait();
  EXPECT_FALSE(t_SoundBusy());
  EXPECT_EQ(logLines(), Lines{"t_Play: No audio output; the sound is silent."});
}

TEST_F(SoundTest, StoppingFromAnotherThreadEndsEveryWait) {
  t_Play("MB T32 L1 CDEFG");
  EXPECT_TRUE(t_SoundBusy());
  std::thread stopper([] {
    std::this_thread::sleep_for(50ms);
    t_SoundStop();
  });
  const auto start = SteadyClock::now();
  t_SoundWait();
  EXPECT_LT(millisecondsSince(start), 2000);
  stopper.join();
  EXPECT_FALSE(t_SoundBusy());
}

// 10,000 tones of 1 ms each, queued while one thread pulls and another stops: whatever stays
// queued is the run of the last tones in their order, and the final wait returns.
TEST_F(SoundTest, TonesQueuedWhileAnotherThreadStopsAreNeitherLostNorReordered) {
  startFreshRuntime(pulledHost());
  constexpr int Count = 10000;
  for (int i = 0; i < Count; ++i) t_Sound(37 + i, 1);
  std::vector<double> queued = queuedToneFrequencies();
  ASSERT_EQ(queued.size(), std::size_t{Count});
  for (int i = 0; i < Count; ++i) ASSERT_EQ(queued[i], 37 + i);
  t_SoundStop();

  std::atomic<bool> queueing{true};
  std::thread puller([&] {
    std::vector<std::int16_t> samples(480);
    while (queueing) pullSoundSamples(samples.data(), samples.size());
  });
  std::thread stopper([&] {
    while (queueing) {
      t_SoundStop();
      std::this_thread::sleep_for(100us);
    }
  });
  for (int i = 0; i < Count; ++i) t_Sound(37 + i, 1);
  queued = queuedToneFrequencies();
  queueing = false;
  puller.join();
  stopper.join();
  for (std::size_t i = 0; i < queued.size(); ++i) {
    ASSERT_EQ(queued[i], 37 + Count - static_cast<double>(queued.size()) + i);
  }
  std::vector<std::int16_t> rest(static_cast<std::size_t>(Count) * SoundSampleRate / 1000);
  pullSoundSamples(rest.data(), rest.size());
  t_SoundWait();
  EXPECT_FALSE(t_SoundBusy());
}

// A stretch of sound that is not silent: its first sample and one past its last.
struct Span {
  std::size_t Begin;
  std::size_t End;
  std::size_t length() const { return End - Begin; }
};

class SoundFileTest : public ::testing::Test {
 protected:
  // The samples that the sound probe writes for `steps`.
  std::vector<std::int16_t> soundOf(const std::string& steps) {
    const std::string wav = folder_.path("sound.wav");
    const CommandRun run = runCommand(std::string(RVTOOLS_SOUND_PROBE) + " --sound " + wav + " " +
                                      steps + " > " + folder_.path("log.txt"));
    EXPECT_EQ(run.Status, 0) << run.Errors;
    SF_INFO format{};
    SNDFILE* file = sf_open(wav.c_str(), SFM_READ, &format);
    if (file == nullptr) return {};
    EXPECT_EQ(format.samplerate, SoundSampleRate);
    EXPECT_EQ(format.channels, 1);
    EXPECT_EQ(format.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(format.frames));
    sf_read_short(file, samples.data(), format.frames);
    sf_close(file);
    return samples;
  }

  TestFolder folder_{"rvtools-sound-"};
};

// Tones are the stretches between runs of at least a millisecond of silence.
std::vector<Span> spansOf(const std::vector<std::int16_t>& samples) {
  std::vector<Span> spans;
  constexpr std::size_t Gap = SoundSampleRate / 1000;
  std::size_t silent = Gap;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    if (samples[i] == 0) {
      ++silent;
      continue;
    }
    if (silent >= Gap) spans.push_back({i, i + 1});
    spans.back().End = i + 1;
    silent = 0;
  }
  return spans;
}

// The frequency of a span by its rising zero crossings, placed between samples.
double frequencyOf(const std::vector<std::int16_t>& samples, const Span& span) {
  double first = -1;
  double last = 0;
  int crossings = 0;
  for (std::size_t i = span.Begin + 1; i < span.End; ++i) {
    if (samples[i - 1] >= 0 || samples[i] < 0) continue;
    const double at =
        static_cast<double>(i - 1) + -samples[i - 1] / double(samples[i] - samples[i - 1]);
    if (first < 0) first = at;
    last = at;
    ++crossings;
  }
  return crossings < 2 ? 0 : (crossings - 1) * SoundSampleRate / (last - first);
}

constexpr std::size_t Millisecond = SoundSampleRate / 1000;

TEST_F(SoundFileTest, AToneHasItsFrequencyAndLength) {
  const std::vector<std::int16_t> samples = soundOf("tone 440 500");
  const std::vector<Span> spans = spansOf(samples);
  ASSERT_EQ(spans.size(), 1u);
  EXPECT_NEAR(spans[0].length(), 500 * Millisecond, Millisecond);
  EXPECT_NEAR(frequencyOf(samples, spans[0]), 440, 440 * 0.005);
}

// Each note sounds 7/8 of its half second, and starts half a second after the one before.
TEST_F(SoundFileTest, AScaleHasItsNotesAtEqualTemperament) {
  const std::vector<std::int16_t> samples = soundOf("play 'T120 O3 L4 C D E F G'");
  const std::vector<Span> spans = spansOf(samples);
  const double expected[] = {261.63, 293.66, 329.63, 349.23, 392.00};
  ASSERT_EQ(spans.size(), std::size(expected));
  for (std::size_t i = 0; i < spans.size(); ++i) {
    EXPECT_NEAR(frequencyOf(samples, spans[i]), expected[i], expected[i] * 0.005) << i;
    EXPECT_NEAR(spans[i].length(), 500 * Millisecond * 7 / 8, Millisecond) << i;
    if (i > 0) {
      EXPECT_NEAR(spans[i].Begin - spans[i - 1].Begin, 500 * Millisecond, 2) << i;
    }
  }
}

// A sixteenth at T120 lasts 125 ms; every note is followed by a sixteenth's pause, the last by
// two (P and N0).
TEST_F(SoundFileTest, DotsArticulationOctavesNumbersAndPausesChangeTheSound) {
  const std::vector<std::int16_t> samples =
      soundOf("play 'T120 O3 L16 C P C. P MS C P ML C P < C P >> C P N37 P N0 C'");
  const std::vector<Span> spans = spansOf(samples);
  constexpr std::size_t Sixteenth = 125 * Millisecond;
  struct Note {
    double Frequency;
    std::size_t Sounding;
    std::size_t FromPrevious;  // from the start of the note before
  };
  const Note notes[] = {{261.63, Sixteenth * 7 / 8, 0},
                        {261.63, Sixteenth * 3 / 2 * 7 / 8, 2 * Sixteenth},
                        {261.63, Sixteenth * 3 / 4, Sixteenth * 5 / 2},
                        {261.63, Sixteenth, 2 * Sixteenth},
                        {130.81, Sixteenth, 2 * Sixteenth},
                        {523.25, Sixteenth, 2 * Sixteenth},
                        {261.63, Sixteenth, 2 * Sixteenth},
                        {523.25, Sixteenth, 3 * Sixteenth}};
  ASSERT_EQ(spans.size(), std::size(notes));
  for (std::size_t i = 0; i < spans.size(); ++i) {
    EXPECT_NEAR(frequencyOf(samples, spans[i]), notes[i].Frequency, notes[i].Frequency * 0.005)
        << i;
    EXPECT_NEAR(spans[i].length(), notes[i].Sounding, Millisecond) << i;
    if (i > 0) {
      EXPECT_NEAR(spans[i].Begin - spans[i - 1].Begin, notes[i].FromPrevious, 2) << i;
    }
  }
}

// Each tone fades in and out over its ramps: its first and last samples stay within the raised
// cosine, and no sample reaches the end of the 16-bit range.
TEST_F(SoundFileTest, TonesFadeInAndOutWithoutClicks) {
  const std::vector<std::int16_t> samples = soundOf("play 'T200 L16 O2 CEG>C<GEC' tone 15000 40");
  const std::vector<Span> spans = spansOf(samples);
  ASSERT_EQ(spans.size(), 8u);
  for (const Span& span : spans) {
    for (std::size_t i = 0; i < 20; ++i) {
      const double fade =
          0.5 - 0.5 * std::cos(M_PI * static_cast<double>(i + 1) / SoundRampSamples);
      const double bound = 1.3 * ToneAmplitude * fade + 1;
      EXPECT_LE(std::abs(samples[span.Begin + i]), bound) << span.Begin << " " << i;
      EXPECT_LE(std::abs(samples[span.End - 1 - i]), bound) << span.End << " " << i;
    }
  }
  const auto [lowest, highest] = std::minmax_element(samples.begin(), samples.end());
  EXPECT_GT(*lowest, -32768);
  EXPECT_LT(*highest, 32767);
  EXPECT_LT(*highest, 1.3 * ToneAmplitude);
}

// The program quits while its background music plays: the run ends at once and the file holds
// what played until then.
TEST_F(SoundFileTest, QuittingWhileMusicPlaysEndsCleanly) {
  const auto start = SteadyClock::now();
  const std::vector<std::int16_t> samples = soundOf("play 'MB T120 L1 CDEFGAB' quit");
  EXPECT_LT(millisecondsSince(start), 5000);
  EXPECT_LT(samples.size(), std::size_t{SoundSampleRate} * 5);
}

}  // namespace
}  // namespace rvtools::testing
