// SPDX-License-Identifier: MIT
// music: "Tidewater", a short tune written for rvtools, played with t_Play in the music language
// of the home computers' PLAY. Each note is printed as it starts to sound; t_Play waits until
// its note has played (MF), so the screen keeps time with the music. Without an audio device
// the tune plays silently and takes as long.
//
//   Music.app/Contents/MacOS/music
//   Music.app/Contents/MacOS/music --headless --sound tidewater.wav
#include <algorithm>
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;

namespace {

constexpr UInt8 Screen = 0;

// [manual music-tune]
// Four bars of eighth notes in octave 4; <A4> is a quarter-note A an octave down, and back up.
constexpr const char* Tidewater[] = {
    "E G A G E D C4",
    "D E G E D C <A4>",
    "C E G >C< B G A4",
    "G E D E C2",
};
// [end]

// [manual music-play]
// Prints each note of a bar and plays it; the note ends before the next is printed.
void playBar(const std::string& bar) {
  std::size_t start = 0;
  while (start < bar.size()) {
    const std::size_t end = std::min(bar.find(' ', start), bar.size());
    const std::string note = bar.substr(start, end - start);
    t_Print(Screen, note + " ");
    t_Play(note);
    start = end + 1;
  }
  t_Print(Screen, "\r");
}
// [end]

}  // namespace

void music() {
  // Set-up: a window of 40 x 10 characters and the settings of the music that follows. What a
  // text sets stays set for the next t_Play: the tempo, the length of a note and the octave.
  t_InitWindow(0, 24, 40, 10, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");
  t_Color(Screen, 14);
  t_Print(Screen, "Tidewater, a tune for rvtools\r\r");
  t_Color(Screen, 15);
  t_Play("T180 L8 O4 MN MF");

  // Run: bar by bar, note by note.
  for (const char* bar : Tidewater) playBar(bar);

  // End.
  t_Print(Screen, "\rThe end.");
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, music);
}
