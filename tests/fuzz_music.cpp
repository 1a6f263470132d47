// SPDX-License-Identifier: MIT
// libFuzzer target for the music language of t_Play: any text reads without a crash,
// out-of-bounds access or hang, either into an error inside the text (or just past it) and no
// tones, or into tones of real notes whose lengths the queue can hold, with settings in range.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "runtime/music.hpp"
#include "rvtools/sound.hpp"

namespace {

using namespace rvtools;

void require(bool condition) {
  if (!condition) std::abort();
}

void checkTones(const MusicReading& reading) {
  for (const MusicTone& tone : reading.Tones) {
    require(tone.Frequency == 0 || (tone.Frequency >= noteFrequency(1) - 1e-9 &&
                                    tone.Frequency <= noteFrequency(84) + 1e-9));
    require(tone.Length > 0 && tone.Length <= SoundQueueSamples + 1);
    require(tone.Sounding >= 0 && tone.Sounding <= tone.Length);
  }
}

void checkSettings(const MusicSettings& settings) {
  require(settings.Octave >= 0 && settings.Octave <= 6);
  require(settings.NoteLength >= 1 && settings.NoteLength <= 64);
  require(settings.Tempo >= 32 && settings.Tempo <= 255);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const MusicReading reading = readMusic(text);
  if (reading.ErrorPosition != 0) {
    require(reading.ErrorPosition <= size + 1);
    require(reading.Tones.empty());
    return 0;
  }
  require(reading.Tones.size() <= size);
  checkTones(reading);
  checkSettings(reading.Settings);
  return 0;
}
