// SPDX-License-Identifier: MIT
// The headless host's audio output: the sound pulled in the program's time into a WAV file.
#include "headless/sound_file.hpp"

#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "rvtools/sound.hpp"

namespace rvtools::headless {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto PullInterval = std::chrono::milliseconds(2);

std::int64_t samplesSince(Clock::time_point start) {
  const auto elapsed =
      std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
  return elapsed * SoundSampleRate / 1'000'000;
}

}  // namespace

void SoundFile::Closer::operator()(void* file) const {
  sf_close(static_cast<SNDFILE*>(file));
}

SoundFile::SoundFile(const std::string& path) {
  SF_INFO format{};
  format.samplerate = SoundSampleRate;
  format.channels = 1;
  format.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  file_.reset(sf_open(path.c_str(), SFM_WRITE, &format));
  if (!file_) {
    std::fprintf(stderr, "runHeadless: cannot write %s: %s\n", path.c_str(), sf_strerror(nullptr));
  }
}

SoundFile::~SoundFile() {
  finish();
}

void SoundFile::start() {
  thread_ = std::thread([this] { run(); });
}

void SoundFile::finish() {
  {
    std::lock_guard lock(mutex_);
    finish_ = true;
  }
  finishing_.notify_all();
  if (thread_.joinable()) thread_.join();
  file_.reset();
}

void SoundFile::run() {
  const Clock::time_point start = Clock::now();
  std::unique_lock lock(mutex_);
  while (!finishing_.wait_for(lock, PullInterval, [this] { return finish_; })) {
    writeDue(samplesSince(start));
  }
  writeDue(samplesSince(start));
}

void SoundFile::writeDue(std::int64_t due) {
  if (due <= written_) return;
  std::vector<std::int16_t> samples(static_cast<std::size_t>(due - written_));
  pullSoundSamples(samples.data(), samples.size());
  sf_write_short(static_cast<SNDFILE*>(file_.get()), samples.data(),
                 static_cast<sf_count_t>(samples.size()));
  written_ = due;
  audibleSamples_ +=
      std::count_if(samples.begin(), samples.end(), [](std::int16_t s) { return s != 0; });
}

}  // namespace rvtools::headless
