// SPDX-License-Identifier: MIT
// Internal: the click and beep sounds. The AIFF files are decoded once with libsndfile and played
// with Qt Multimedia on the interface thread; a caller on any thread only queues the start and
// never waits for it.
#pragma once

#include <QAudioFormat>
#include <QByteArray>
#include <array>
#include <atomic>
#include <memory>
#include <string>

#include "rvtools/host.hpp"

class QAudioSink;
class QBuffer;

namespace rvtools::shell {

class SoundPlayer {
 public:
  // Loads "click.aif" and "sysbeep.aif" from `resourceFolder`. Create it on the interface thread.
  explicit SoundPlayer(const std::string& resourceFolder);
  ~SoundPlayer();
  SoundPlayer(const SoundPlayer&) = delete;
  SoundPlayer& operator=(const SoundPlayer&) = delete;

  // Starts the sound unless it is still playing; false when it is missing, cannot be decoded or
  // there is no audio output.
  bool play(Sound sound);

 private:
  struct Clip {
    QByteArray Samples;  // signed 16-bit, interleaved
    QAudioFormat Format;
    std::unique_ptr<QBuffer> Source;
    std::unique_ptr<QAudioSink> Sink;
    std::atomic<bool> Playing = false;
  };

  void load(Clip& clip, const std::string& path);
  void start(Clip& clip);

  bool outputAvailable_ = false;
  std::array<Clip, 2> clips_;
};

}  // namespace rvtools::shell
