// SPDX-License-Identifier: MIT
// Internal: the samples of a tone, a band-limited square wave that fades in and out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "rvtools/sound.hpp"

namespace rvtools {

// The fade at each end of a tone: 3 ms, raised cosine. A tone shorter than two fades fades in
// over its first half and out over its second.
inline constexpr int SoundRampSamples = SoundSampleRate * 3 / 1000;
// The loudness of a tone: a quarter of full scale, which leaves room for the host's click and
// beep beside it.
inline constexpr double ToneAmplitude = 0.25 * 32767;

// Writes samples from..from+count-1 of a tone of `frequency` Hz that sounds for `length`
// samples into `out`. Harmonics above half the sample rate are left out: a tone whose third
// harmonic lies there is a sine, one above half the rate is silent.
void synthesizeTone(double frequency, std::int64_t length, std::int64_t from, std::int16_t* out,
                    std::size_t count);

}  // namespace rvtools
