// SPDX-License-Identifier: MIT
// Internal to the terminal host: its audio output, a PortAudio callback stream on the default
// output device whose callback pulls the runtime's tones and music.
#pragma once

namespace rvtools::terminal {

class ToneStream {
 public:
  ToneStream() = default;
  ~ToneStream();
  ToneStream(const ToneStream&) = delete;
  ToneStream& operator=(const ToneStream&) = delete;

  // Starts the stream, once; false when PortAudio finds no output device or cannot open one.
  // Nothing that the sound libraries say while they look for a device reaches standard error.
  bool start();

 private:
  bool openAndStart();

  bool initialized_ = false;
  void* stream_ = nullptr;  // a PaStream, kept out of this header
};

}  // namespace rvtools::terminal
