// SPDX-License-Identifier: MIT
// Tones and music on the desktop: a QAudioSink in pull mode reads from a ToneSource, whose reads
// pull the runtime's samples. A device that does not take the runtime's own format is left
// silent rather than converted: Qt's default output mixes through the sound server, which takes
// mono 16-bit samples at any usual rate.
#include "shell/tone_output.hpp"

#include <QAudioSink>
#include <QMediaDevices>
#include <algorithm>
#include <cstring>

#include "rvtools/sound.hpp"

namespace rvtools::shell {
namespace {

constexpr qint64 BytesPerSample = sizeof(std::int16_t);
// The sink's buffer: a tenth of a second, so that music is heard soon after it is pulled and a
// busy interface thread still does not starve the device.
constexpr qint64 BufferBytes = SoundSampleRate / 10 * BytesPerSample;

QAudioFormat toneFormat() {
  QAudioFormat format;
  format.setSampleRate(SoundSampleRate);
  format.setChannelCount(1);
  format.setSampleFormat(QAudioFormat::Int16);
  return format;
}

}  // namespace

ToneSource::ToneSource() {
  open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool ToneSource::isSequential() const {
  return true;
}

// Samples are pulled into a buffer of their own, since `data` need not be aligned for them.
qint64 ToneSource::readData(char* data, qint64 maxSize) {
  const auto count = static_cast<std::size_t>(std::max<qint64>(maxSize, 0) / BytesPerSample);
  if (count == 0) return 0;
  samples_.resize(count);
  pullSoundSamples(samples_.data(), count);
  const qint64 bytes = static_cast<qint64>(count) * BytesPerSample;
  std::memcpy(data, samples_.data(), static_cast<std::size_t>(bytes));
  return bytes;
}

qint64 ToneSource::writeData(const char*, qint64) {
  return -1;
}

std::unique_ptr<ToneOutput> ToneOutput::start() {
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  const QAudioFormat format = toneFormat();
  if (device.isNull() || !device.isFormatSupported(format)) return nullptr;
  auto output = std::make_unique<ToneOutput>(device, format);
  if (!output->running()) return nullptr;
  return output;
}

ToneOutput::ToneOutput(const QAudioDevice& device, const QAudioFormat& format)
    : sink_(std::make_unique<QAudioSink>(device, format)) {
  sink_->setBufferSize(BufferBytes);
  sink_->start(&source_);
}

ToneOutput::~ToneOutput() = default;

bool ToneOutput::running() const {
  return sink_->error() == QAudio::NoError && sink_->state() != QAudio::StoppedState;
}

}  // namespace rvtools::shell
