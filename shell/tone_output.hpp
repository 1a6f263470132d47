// SPDX-License-Identifier: MIT
// Internal: the desktop host's audio output for tones and music, a QAudioSink on the default
// audio output that pulls the runtime's samples through a device of our own. Create and use it
// on the interface thread.
#pragma once

#include <QAudioDevice>
#include <QAudioFormat>
#include <QIODevice>
#include <cstdint>
#include <memory>
#include <vector>

class QAudioSink;

namespace rvtools::shell {

// The runtime's tones and music as an endless read-only stream: signed 16-bit mono samples at
// SoundSampleRate in the machine's byte order, each read pulling as many whole samples as fit.
class ToneSource final : public QIODevice {
 public:
  // Open, and unbuffered, so that a read pulls no more than the sink asks for.
  ToneSource();
  bool isSequential() const override;

 protected:
  qint64 readData(char* data, qint64 maxSize) override;
  qint64 writeData(const char* data, qint64 size) override;

 private:
  std::vector<std::int16_t> samples_;
};

class ToneOutput {
 public:
  // Starts the output on the default audio device; null when there is none, when it takes no
  // mono 16-bit samples at SoundSampleRate, or when the sink does not start.
  static std::unique_ptr<ToneOutput> start();

  ToneOutput(const QAudioDevice& device, const QAudioFormat& format);
  ~ToneOutput();
  ToneOutput(const ToneOutput&) = delete;
  ToneOutput& operator=(const ToneOutput&) = delete;

 private:
  bool running() const;

  ToneSource source_;
  std::unique_ptr<QAudioSink> sink_;  // stops before its source goes
};

}  // namespace rvtools::shell
