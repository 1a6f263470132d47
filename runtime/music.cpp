// SPDX-License-Identifier: MIT
// The music language of t_Play, read into tones and pauses. A text is a row of commands, each
// a letter that may take a number: notes A..G (with # or + for sharp, - for flat, a length
// and dots), N for a note by number, P and R for pauses, O < > for the octave, L for the
// default length, T for the tempo, and M with F, B, N, L or S. Blanks and case do not count.
// Lengths are kept in fractional samples from the music's start and rounded only where a tone
// begins and ends, so that long music ends on the sample its tempo says.
#include "runtime/music.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "rvtools/sound.hpp"

namespace rvtools {
namespace {

constexpr int NoteNumberOfA440 = 46;
constexpr int HighestNote = 84;
// A number is read up to this value; longer ones are out of every range all the same.
constexpr int NumberCeiling = 1'000'000;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The semitone of a note letter above the octave's C.
int semitoneOf(char letter) {
  constexpr int semitones[] = {9, 11, 0, 2, 4, 5, 7};  // A..G
  return semitones[letter - 'A'];
}

class MusicReader {
 public:
  MusicReader(std::string_view text, const MusicSettings& start) : text_(text) {
    reading_.Settings = start;
  }

  MusicReading read() {
    while (reading_.ErrorPosition == 0 && !atEnd()) readCommand();
    if (reading_.ErrorPosition != 0) reading_.Tones.clear();
    return std::move(reading_);
  }

 private:
  bool atEnd() {
    peek();
    return at_ == text_.size();
  }
  // The next non-blank character, upper case, without taking it; 0 at the end.
  char peek() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
    return at_ < text_.size()
               ? static_cast<char>(std::toupper(static_cast<unsigned char>(text_[at_])))
               : 0;
  }
  char take() {
    const char c = peek();
    if (at_ < text_.size()) ++at_;
    return c;
  }
  // The 1-based position of the next non-blank character, or one past the end.
  std::size_t position() {
    peek();
    return at_ + 1;
  }
  void fail(std::size_t position) {
    if (reading_.ErrorPosition == 0) reading_.ErrorPosition = position;
  }

  // A number in `low`..`high` if digits follow; nothing if none do; an error where the digits
  // start if they leave the range.
  std::optional<int> optionalNumber(int low, int high) {
    if (!std::isdigit(static_cast<unsigned char>(peek()))) return std::nullopt;
    const std::size_t start = position();
    int number = 0;
    while (std::isdigit(static_cast<unsigned char>(peek()))) {
      number = std::min(NumberCeiling, number * 10 + (take() - '0'));
    }
    if (number < low || number > high) fail(start);
    return number;
  }
  int number(int low, int high) {
    const std::size_t start = position();
    const std::optional<int> value = optionalNumber(low, high);
    if (!value) fail(start);
    return value.value_or(low);
  }
  int dots() {
    int count = 0;
    while (peek() == '.') {
      take();
      ++count;
    }
    return count;
  }

  void readCommand() {
    const std::size_t start = position();
    const char command = take();
    MusicSettings& settings = reading_.Settings;
    if (command >= 'A' && command <= 'G') {
      readNote(command, start);
    } else if (command == 'N') {
      const int note = number(0, HighestNote);
      addTone(note == 0 ? 0 : noteFrequency(note), settings.NoteLength, dots());
    } else if (command == 'P' || command == 'R') {
      const int length = optionalNumber(1, 64).value_or(settings.NoteLength);
      addTone(0, length, dots());
    } else if (command == 'O') {
      settings.Octave = number(0, 6);
    } else if (command == '<') {
      settings.Octave = std::max(0, settings.Octave - 1);
    } else if (command == '>') {
      settings.Octave = std::min(6, settings.Octave + 1);
    } else if (command == 'L') {
      settings.NoteLength = number(1, 64);
    } else if (command == 'T') {
      settings.Tempo = number(32, 255);
    } else if (command == 'M') {
      readMode();
    } else {
      fail(start);
    }
  }

  void readNote(char letter, std::size_t start) {
    int note = reading_.Settings.Octave * 12 + semitoneOf(letter) + 1;
    const char accidental = peek();
    if (accidental == '#' || accidental == '+' || accidental == '-') {
      take();
      note += accidental == '-' ? -1 : 1;
    }
    if (note < 1 || note > HighestNote) fail(start);
    const int length = optionalNumber(1, 64).value_or(reading_.Settings.NoteLength);
    const int dotCount = dots();
    addTone(noteFrequency(std::clamp(note, 1, HighestNote)), length, dotCount);
  }

  void readMode() {
    const std::size_t start = position();
    MusicSettings& settings = reading_.Settings;
    switch (take()) {
      case 'F':
        settings.Background = false;
        break;
      case 'B':
        settings.Background = true;
        break;
      case 'N':
        settings.Style = Articulation::Normal;
        break;
      case 'L':
        settings.Style = Articulation::Legato;
        break;
      case 'S':
        settings.Style = Articulation::Staccato;
        break;
      default:
        fail(start);
    }
  }

  // A tone of 1/length of a whole note (four beats), each dot making it half as long again. A
  // tone longer than the sound queue holds is cut to that.
  void addTone(double frequency, int length, int dotCount) {
    if (reading_.ErrorPosition != 0) return;
    const double beat = 60.0 * SoundSampleRate / reading_.Settings.Tempo;
    const double samples = std::min(4.0 * beat / length * std::pow(1.5, dotCount),
                                    static_cast<double>(SoundQueueSamples));
    const auto begin = std::llround(elapsed_);
    elapsed_ += samples;
    MusicTone tone;
    tone.Frequency = frequency;
    tone.Length = std::llround(elapsed_) - begin;
    tone.Sounding =
        frequency == 0 ? 0 : tone.Length * static_cast<int>(reading_.Settings.Style) / 8;
    reading_.Tones.push_back(tone);
  }

  std::string_view text_;
  std::size_t at_ = 0;
  double elapsed_ = 0;  // samples from the music's start
  MusicReading reading_;
};

}  // namespace

MusicReading readMusic(std::string_view text, const MusicSettings& start) {
  return MusicReader(text, start).read();
}

double noteFrequency(int number) {
  return 440.0 * std::exp2((number - NoteNumberOfA440) / 12.0);
}

}  // namespace rvtools
