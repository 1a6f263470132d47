// SPDX-License-Identifier: MIT
// The music language of t_Play, read into tones: notes, lengths, dots, octaves, tempo,
// articulation, pauses and the settings that carry over, and where an illegal text goes wrong.
#include <cmath>
#include <string>

#include "common.hpp"
#include "runtime/music.hpp"

namespace rvtools::testing {
namespace {

// At T120 a quarter note lasts half a second: 24,000 samples.
constexpr std::int64_t Quarter = SoundSampleRate / 2;

struct ToneCase {
  std::string Music;
  double Frequency;
  std::int64_t Sounding;
  std::int64_t Length;
};

TEST(MusicTest, ATextBecomesTonesOfTheRightPitchAndLength) {
  const double middleC = 261.6256;
  const ToneCase cases[] = {
      {"O3 A", 440, Quarter * 7 / 8, Quarter},
      {"N37", middleC, Quarter * 7 / 8, Quarter},
      {"o3c", middleC, Quarter * 7 / 8, Quarter},
      {"C", 2 * middleC, Quarter * 7 / 8, Quarter},  // octave 4 at the start
      {"O3 C#", 277.1826, Quarter * 7 / 8, Quarter},
      {"O3 C+", 277.1826, Quarter * 7 / 8, Quarter},
      {"O3 D-", 277.1826, Quarter * 7 / 8, Quarter},
      {"O3 C-", 246.9417, Quarter * 7 / 8, Quarter},  // B of the octave below
      {"O3 <A", 220, Quarter * 7 / 8, Quarter},
      {"O3 >>A", 1760, Quarter * 7 / 8, Quarter},
      {"O0 <<C", 32.7032, Quarter * 7 / 8, Quarter},  // < stops at octave 0
      {"O6 >B", 3951.066, Quarter * 7 / 8, Quarter},  // > stops at octave 6
      {"N84", 3951.066, Quarter * 7 / 8, Quarter},
      {"O3 A8", 440, Quarter / 2 * 7 / 8, Quarter / 2},
      {"O3 L8 A", 440, Quarter / 2 * 7 / 8, Quarter / 2},
      {"O3 A.", 440, Quarter * 3 / 2 * 7 / 8, Quarter * 3 / 2},
      {"O3 A..", 440, Quarter * 9 / 4 * 7 / 8, Quarter * 9 / 4},
      {"T60 O3 A", 440, Quarter * 2 * 7 / 8, Quarter * 2},
      {"MS O3 A", 440, Quarter * 3 / 4, Quarter},
      {"ML O3 A", 440, Quarter, Quarter},
      {"ML MN O3 A", 440, Quarter * 7 / 8, Quarter},
      {"P", 0, 0, Quarter},
      {"R2.", 0, 0, Quarter * 3},
      {"N0", 0, 0, Quarter},
      {" m s  o 3 a 1 6 ", 440, Quarter / 4 * 3 / 4, Quarter / 4},
  };
  for (const ToneCase& tone : cases) {
    const MusicReading reading = readMusic(tone.Music);
    EXPECT_EQ(reading.ErrorPosition, 0u) << tone.Music;
    ASSERT_EQ(reading.Tones.size(), 1u) << tone.Music;
    EXPECT_NEAR(reading.Tones[0].Frequency, tone.Frequency, 0.001) << tone.Music;
    EXPECT_EQ(reading.Tones[0].Sounding, tone.Sounding) << tone.Music;
    EXPECT_EQ(reading.Tones[0].Length, tone.Length) << tone.Music;
  }
}

TEST(MusicTest, SettingsCarryOverToTheNextMusic) {
  const MusicReading first = readMusic("O2 L8 T150 MS MB");
  EXPECT_TRUE(first.Tones.empty());
  const MusicSettings expected{2, 8, 150, Articulation::Staccato, true};
  EXPECT_EQ(first.Settings, expected);
  const MusicReading second = readMusic("A MF", first.Settings);
  EXPECT_NEAR(second.Tones.at(0).Frequency, 220, 0.001);
  EXPECT_EQ(second.Tones.at(0).Length, SoundSampleRate * 60 / 150 / 2);
  EXPECT_FALSE(second.Settings.Background);
}

// Thousands of short notes end on the sample the tempo says, not a rounding per note later.
TEST(MusicTest, LongMusicKeepsItsTimeToTheSample) {
  const MusicReading reading = readMusic("T255 L64 " + std::string(6000, 'C'));
  std::int64_t total = 0;
  for (const MusicTone& tone : reading.Tones) total += tone.Length;
  EXPECT_EQ(total, std::llround(6000 * 4 * 60.0 * SoundSampleRate / 255 / 64));
  // Endless dots give a tone no longer than the queue holds.
  const MusicReading dotted = readMusic("T32 L1 C" + std::string(5000, '.'));
  EXPECT_EQ(dotted.Tones.at(0).Length, SoundQueueSamples);
}

TEST(MusicTest, AnIllegalTextGivesNoTonesAndThePlaceOfItsError) {
  const std::pair<std::string, std::size_t> cases[] = {
      {"CDX", 3},
      {"O7", 2},
      {"O", 2},
      {"L0", 2},
      {"L65", 2},
      {"T31", 2},
      {"T256", 2},
      {"T", 2},
      {"MZ", 2},
      {"M", 2},
      {"C65", 2},
      {"C0", 2},
      {"N85", 2},
      {"O0 C-", 4},
      {"O6 B#", 4},
      {"P65", 2},
      {"  x", 3},
      {"C;D", 2},
      {"c d  e q", 8},
      {"T99999999999999999999", 2},
      {std::string("C\0D", 3), 2},
  };
  for (const auto& [music, position] : cases) {
    const MusicReading reading = readMusic(music);
    EXPECT_EQ(reading.ErrorPosition, position) << music;
    EXPECT_TRUE(reading.Tones.empty()) << music;
  }
}

}  // namespace
}  // namespace rvtools::testing
