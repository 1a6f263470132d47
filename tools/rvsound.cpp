// SPDX-License-Identifier: MIT
// rvsound: writes the runtime's two sounds as AIFF files, so that no sound file has to be taken
// from elsewhere: "click.aif", a few milliseconds of a decaying tick, and "sysbeep.aif", a short
// tone with soft edges.
//
//   rvsound click <file.aif>
//   rvsound beep <file.aif>
//
// Depends on libsndfile for the AIFF container.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr int SampleRate = 44100;

// A click: 4 ms of a 2 kHz sine that decays quickly, like a key striking.
std::vector<short> clickSamples() {
  const int count = SampleRate * 4 / 1000;
  std::vector<short> samples(count);
  for (int i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / SampleRate;
    const double envelope = std::exp(-t * 1500.0);
    samples[i] =
        static_cast<short>(20000.0 * envelope * std::sin(2 * std::numbers::pi * 2000.0 * t));
  }
  return samples;
}

// A beep: 150 ms of an 880 Hz tone, faded in and out over 10 ms so that it does not crack.
std::vector<short> beepSamples() {
  const int count = SampleRate * 150 / 1000;
  const int fade = SampleRate * 10 / 1000;
  std::vector<short> samples(count);
  for (int i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / SampleRate;
    const double edge =
        std::min({1.0, static_cast<double>(i) / fade, static_cast<double>(count - 1 - i) / fade});
    samples[i] = static_cast<short>(12000.0 * edge * std::sin(2 * std::numbers::pi * 880.0 * t));
  }
  return samples;
}

bool writeAiff(const std::string& path, const std::vector<short>& samples) {
  SF_INFO info{};
  info.samplerate = SampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_AIFF | SF_FORMAT_PCM_16;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) {
    std::fprintf(stderr, "rvsound: %s: %s\n", path.c_str(), sf_strerror(nullptr));
    return false;
  }
  const sf_count_t written =
      sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(file);
  return written == static_cast<sf_count_t>(samples.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: rvsound click|beep <file.aif>\n");
    return 2;
  }
  const std::string kind = argv[1];
  if (kind != "click" && kind != "beep") {
    std::fprintf(stderr, "rvsound: unknown sound '%s'\n", argv[1]);
    return 2;
  }
  return writeAiff(argv[2], kind == "click" ? clickSamples() : beepSamples()) ? 0 : 1;
}
