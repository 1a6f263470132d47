// SPDX-License-Identifier: MIT
// The terminal host's audio output. While PortAudio looks for devices, ALSA and JACK write their
// failures (no card, no server) to standard error, dozens of lines on a machine without sound.
// Descriptor 2 points at /dev/null meanwhile: that silences every library PortAudio may load
// alike, where an error handler would have to be set in each of them.
#include "terminal/tone_stream.hpp"

#include <fcntl.h>
#include <portaudio.h>
#include <unistd.h>

#include <cstdint>

#include "rvtools/sound.hpp"

namespace rvtools::terminal {
namespace {

// Standard error pointed at /dev/null for the object's lifetime, then restored.
class SilencedStandardError {
 public:
  SilencedStandardError() : saved_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) {
      dup2(nowhere, STDERR_FILENO);
      close(nowhere);
    }
  }
  ~SilencedStandardError() {
    if (saved_ < 0) return;
    dup2(saved_, STDERR_FILENO);
    close(saved_);
  }
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

 private:
  int saved_;
};

int pullTones(const void*, void* output, unsigned long frames, const PaStreamCallbackTimeInfo*,
              PaStreamCallbackFlags, void*) {
  pullSoundSamples(static_cast<std::int16_t*>(output), frames);
  return paContinue;
}

}  // namespace

ToneStream::~ToneStream() {
  if (stream_ != nullptr) Pa_CloseStream(stream_);
  if (initialized_) Pa_Terminate();
}

bool ToneStream::start() {
  if (stream_ != nullptr) return true;
  const SilencedStandardError silenced;
  if (!initialized_) initialized_ = Pa_Initialize() == paNoError;
  return initialized_ && openAndStart();
}

bool ToneStream::openAndStart() {
  PaStreamParameters output{};
  output.device = Pa_GetDefaultOutputDevice();
  if (output.device == paNoDevice) return false;
  const PaDeviceInfo* device = Pa_GetDeviceInfo(output.device);
  if (device == nullptr) return false;
  output.channelCount = 1;
  output.sampleFormat = paInt16;
  // The device's higher latency: fewer drop-outs, and still a few tens of milliseconds.
  output.suggestedLatency = device->defaultHighOutputLatency;
  PaStream* stream = nullptr;
  if (Pa_OpenStream(&stream, nullptr, &output, SoundSampleRate, paFramesPerBufferUnspecified,
                    paNoFlag, pullTones, nullptr) != paNoError) {
    return false;
  }
  if (Pa_StartStream(stream) != paNoError) {
    Pa_CloseStream(stream);
    return false;
  }
  stream_ = stream;
  return true;
}

}  // namespace rvtools::terminal
