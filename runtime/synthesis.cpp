// SPDX-License-Identifier: MIT
// The samples of a tone. The square wave is band-limited with PolyBLEP: each jump of the naive
// wave is smoothed by a two-sample polynomial step, which takes away most of what would fold
// back below half the sample rate, at the cost of a few multiplications a sample. The phase is
// computed from the sample's place in the tone, so that any stretch can be made on its own.
#include "runtime/synthesis.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace rvtools {
namespace {

// The correction of a unit jump at phase 0 for a wave that advances `step` a sample.
double polyBlep(double phase, double step) {
  if (phase < step) {
    const double t = phase / step;
    return t + t - t * t - 1.0;
  }
  if (phase > 1.0 - step) {
    const double t = (phase - 1.0) / step;
    return t * t + t + t + 1.0;
  }
  return 0.0;
}

double squareAt(double phase, double step) {
  const double naive = phase < 0.5 ? 1.0 : -1.0;
  const double halfway = phase < 0.5 ? phase + 0.5 : phase - 0.5;
  return naive + polyBlep(phase, step) - polyBlep(halfway, step);
}

// A sine of the same fundamental as a square wave of amplitude 1.
double sineAt(double phase) {
  return 4.0 / std::numbers::pi * std::sin(2.0 * std::numbers::pi * phase);
}

// The raised-cosine fade of sample `index` of a tone of `length` samples.
double fadeAt(std::int64_t index, std::int64_t length) {
  const std::int64_t ramp = std::min<std::int64_t>(SoundRampSamples, length / 2);
  const std::int64_t fromEdge = std::min(index, length - 1 - index);
  if (fromEdge >= ramp) return 1.0;
  return 0.5 - 0.5 * std::cos(std::numbers::pi * static_cast<double>(fromEdge) / ramp);
}

}  // namespace

void synthesizeTone(double frequency, std::int64_t length, std::int64_t from, std::int16_t* out,
                    std::size_t count) {
  const double step = frequency / SoundSampleRate;
  if (step >= 0.5) {
    std::fill(out, out + count, 0);
    return;
  }
  const bool sine = 3.0 * step >= 0.5;
  double phase = std::fmod(static_cast<double>(from) * step, 1.0);
  for (std::size_t i = 0; i < count; ++i) {
    const double wave = sine ? sineAt(phase) : squareAt(phase, step);
    const double value = ToneAmplitude * fadeAt(from + static_cast<std::int64_t>(i), length) * wave;
    out[i] = static_cast<std::int16_t>(std::clamp(std::lround(value), -32768L, 32767L));
    phase += step;
    if (phase >= 1.0) phase -= 1.0;
  }
}

}  // namespace rvtools
