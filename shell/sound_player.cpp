// SPDX-License-Identifier: MIT
// The click and beep sounds: decoded from AIFF with libsndfile, played through QAudioSink. The
// sink's state tells whether a sound is still playing; it is mirrored in an atomic flag so that
// the program thread can ask without waiting for the interface thread.
#include "shell/sound_player.hpp"

#include <sndfile.h>

#include <QAudioDevice>
#include <QAudioSink>
#include <QBuffer>
#include <QCoreApplication>
#include <QMediaDevices>
#include <vector>

namespace rvtools::shell {
namespace {

std::size_t clipIndex(Sound sound) {
  return sound == Sound::Click ? 0 : 1;
}

}  // namespace

SoundPlayer::SoundPlayer(const std::string& resourceFolder) {
  outputAvailable_ = !QMediaDevices::defaultAudioOutput().isNull();
  load(clips_[clipIndex(Sound::Click)], resourceFolder + "/click.aif");
  load(clips_[clipIndex(Sound::Beep)], resourceFolder + "/sysbeep.aif");
}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::load(Clip& clip, const std::string& path) {
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) return;
  std::vector<short> samples(static_cast<std::size_t>(info.frames * info.channels));
  const sf_count_t read =
      sf_read_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(file);
  if (read <= 0) return;
  clip.Samples = QByteArray(reinterpret_cast<const char*>(samples.data()),
                            static_cast<qsizetype>(read * static_cast<sf_count_t>(sizeof(short))));
  clip.Format.setSampleRate(info.samplerate);
  clip.Format.setChannelCount(info.channels);
  clip.Format.setSampleFormat(QAudioFormat::Int16);
}

bool SoundPlayer::play(Sound sound) {
  Clip& clip = clips_[clipIndex(sound)];
  if (clip.Samples.isEmpty() || !outputAvailable_) return false;
  if (clip.Playing.exchange(true)) return true;
  QMetaObject::invokeMethod(
      QCoreApplication::instance(), [this, &clip] { start(clip); }, Qt::QueuedConnection);
  return true;
}

void SoundPlayer::start(Clip& clip) {
  if (!clip.Sink) {
    clip.Sink = std::make_unique<QAudioSink>(QMediaDevices::defaultAudioOutput(), clip.Format);
    clip.Source = std::make_unique<QBuffer>(&clip.Samples);
    QObject::connect(clip.Sink.get(), &QAudioSink::stateChanged, [&clip](QAudio::State state) {
      if (state == QAudio::IdleState) clip.Sink->stop();
      if (state == QAudio::StoppedState) clip.Playing = false;
    });
  }
  clip.Source->close();
  clip.Source->open(QIODevice::ReadOnly);
  clip.Sink->start(clip.Source.get());
  if (clip.Sink->state() == QAudio::StoppedState) clip.Playing = false;
}

}  // namespace rvtools::shell
