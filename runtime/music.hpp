// SPDX-License-Identifier: MIT
// Internal: the music language of t_Play, read into tones and pauses. Reading is a pure
// function of the text and the settings that earlier music left; it never plays anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace rvtools {

// One tone or pause of music, its lengths in samples at SoundSampleRate.
struct MusicTone {
  double Frequency = 0;       // Hz; 0 for a pause
  std::int64_t Sounding = 0;  // the samples that sound, from the tone's start
  std::int64_t Length = 0;    // the samples until the next tone starts
  friend bool operator==(const MusicTone&, const MusicTone&) = default;
};

// How much of a note's length sounds, in eighths: MN, ML, MS.
enum class Articulation { Normal = 7, Legato = 8, Staccato = 6 };

// What music sets for the music after it, as it is before any music.
struct MusicSettings {
  int Octave = 4;      // O0..O6; octave 3 starts with middle C
  int NoteLength = 4;  // L1..L64: a quarter note
  int Tempo = 120;     // T32..T255: quarter notes a minute
  Articulation Style = Articulation::Normal;
  bool Background = false;  // MB; MF waits
  friend bool operator==(const MusicSettings&, const MusicSettings&) = default;
};

struct MusicReading {
  std::vector<MusicTone> Tones;
  MusicSettings Settings;         // the settings after the music
  std::size_t ErrorPosition = 0;  // 1-based place of the first illegal character; 0 if legal
};

MusicReading readMusic(std::string_view text, const MusicSettings& start = {});

// The equal-tempered frequency of note number 1..84 (N37 is middle C, N46 A at 440 Hz).
double noteFrequency(int number);

}  // namespace rvtools
