// SPDX-License-Identifier: MIT
// The sound queue: tones and pauses laid end to end on one line of samples. Time is the play
// position on that line. When the host's audio output runs, the position is the count of
// samples it has pulled; without one it is the time of a steady clock counted in samples, so
// the sound plays silently and takes as long. A tone queued while nothing plays starts at the
// position; one queued behind others where the last ends. One mutex guards the queue: the
// program queues, the host's audio thread pulls and any thread may stop.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string_view>

#include "runtime/log.hpp"
#include "runtime/music.hpp"
#include "runtime/sound_queue.hpp"
#include "runtime/synthesis.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/sound.hpp"

namespace rvtools {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct QueuedTone {
  double Frequency = 0;
  std::int64_t Sounding = 0;
  std::int64_t Length = 0;
  std::int64_t Start = 0;  // on the line of samples
  std::int64_t end() const { return Start + Length; }
};

class SoundQueue {
 public:
  // Starts the installed host's audio output the first time a program sounds on that host.
  void startOutput(std::string_view operation) {
    Host& current = host();
    std::lock_guard starting(startMutex_);
    {
      std::lock_guard lock(mutex_);
      if (outputHost_ == &current) return;
    }
    const bool pulled = current.startSoundOutput();
    if (!pulled) logLine(operation, ": No audio output; the sound is silent.");
    std::lock_guard lock(mutex_);
    outputHost_ = &current;
    pulled_ = pulled;
    tones_.clear();
    end_ = position();
  }

  // Where queued music ends on the line, and how many stops came before it.
  struct Placement {
    std::int64_t End = 0;
    std::uint64_t Stops = 0;
  };

  // Queues tones one after the other; what goes beyond the bound is dropped with one log line.
  Placement add(const std::vector<MusicTone>& tones, std::string_view operation) {
    bool dropped = false;
    Placement placement;
    {
      std::lock_guard lock(mutex_);
      const std::int64_t now = position();
      dropPlayed(now);
      end_ = std::max(end_, now);
      for (const MusicTone& tone : tones) {
        const std::int64_t length = std::min(tone.Length, SoundQueueSamples - (end_ - now));
        if (length > 0) {
          tones_.push_back({tone.Frequency, std::min(tone.Sounding, length), length, end_});
          end_ += length;
        }
        dropped = length < tone.Length;
        if (dropped) break;
      }
      placement = {end_, stops_};
    }
    if (dropped) logLine(operation, ": The sound queue is full; the rest is dropped.");
    return placement;
  }

  // Waits until the music placed has played, or a stop came after it.
  void waitFor(const Placement& music) {
    std::unique_lock lock(mutex_);
    while (position() < music.End && stops_ == music.Stops) waitAWhile(lock, music.End);
  }

  // Waits until everything queued has played, what other threads queue meanwhile too.
  void waitForAll() {
    std::unique_lock lock(mutex_);
    while (position() < end_) waitAWhile(lock, end_);
  }

  void stop() {
    std::lock_guard lock(mutex_);
    tones_.clear();
    end_ = position();
    ++stops_;
    pulledOrStopped_.notify_all();
  }

  bool busy() {
    std::lock_guard lock(mutex_);
    return position() < end_;
  }

  std::size_t pull(std::int16_t* out, std::size_t count) {
    std::lock_guard lock(mutex_);
    std::fill(out, out + count, 0);
    const std::int64_t from = samplesPulled_;
    const std::int64_t to = from + static_cast<std::int64_t>(count);
    for (const QueuedTone& tone : tones_) {
      if (tone.Start >= to) break;
      const std::int64_t first = std::max(from, tone.Start);
      const std::int64_t last = std::min(to, tone.Start + tone.Sounding);
      if (first >= last) continue;
      synthesizeTone(tone.Frequency, tone.Sounding, first - tone.Start, out + (first - from),
                     static_cast<std::size_t>(last - first));
    }
    samplesPulled_ = to;
    dropPlayed(to);
    pulledOrStopped_.notify_all();
    return count;
  }

  std::vector<double> frequencies() {
    std::lock_guard lock(mutex_);
    dropPlayed(position());
    std::vector<double> frequencies;
    for (const QueuedTone& tone : tones_) frequencies.push_back(tone.Frequency);
    return frequencies;
  }

  // The settings that music leaves for the next music; t_Play alone reads and writes them.
  MusicSettings musicSettings() {
    std::lock_guard lock(mutex_);
    return musicSettings_;
  }
  void setMusicSettings(const MusicSettings& settings) {
    std::lock_guard lock(mutex_);
    musicSettings_ = settings;
  }

 private:
  // The play position, with the mutex held.
  std::int64_t position() const {
    if (pulled_) return samplesPulled_;
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - origin_);
    return elapsed.count() * SoundSampleRate / 1'000'000;
  }
  // Waits for the next pull or stop; without audio output, until the clock reaches `end`.
  void waitAWhile(std::unique_lock<std::mutex>& lock, std::int64_t end) {
    if (pulled_) {
      pulledOrStopped_.wait_for(lock, 20ms);
      return;
    }
    const auto left = std::chrono::microseconds((end - position()) * 1'000'000 / SoundSampleRate);
    pulledOrStopped_.wait_for(lock, left + 100us);
  }
  void dropPlayed(std::int64_t now) {
    while (!tones_.empty() && tones_.front().end() <= now) tones_.pop_front();
  }

  std::mutex startMutex_;  // taken before mutex_, never after
  std::mutex mutex_;       // guards what follows
  std::condition_variable pulledOrStopped_;
  const Host* outputHost_ = nullptr;
  bool pulled_ = false;
  const Clock::time_point origin_ = Clock::now();
  std::int64_t samplesPulled_ = 0;
  std::deque<QueuedTone> tones_;
  std::int64_t end_ = 0;
  std::uint64_t stops_ = 0;
  MusicSettings musicSettings_;
};

// Never freed: a host's audio thread may still pull while the process ends.
SoundQueue& soundQueue() {
  static auto* queue = new SoundQueue;
  return *queue;
}

constexpr Int LowestFrequency = 37;
constexpr Int HighestFrequency = 32767;

}  // namespace

void t_Sound(Int frequency, Int milliseconds) {
  if (frequency < LowestFrequency || frequency > HighestFrequency) {
    logLine("t_Sound: Frequency ", frequency, " is out of range (37..32767).");
    return;
  }
  if (milliseconds <= 0) return;
  SoundQueue& queue = soundQueue();
  queue.startOutput("t_Sound");
  // Beyond the bound the length makes no difference, and the product stays in range.
  const Int samples = std::min(milliseconds, SoundQueueSamples * 1000 / SoundSampleRate + 1) *
                      SoundSampleRate / 1000;
  queue.add({{static_cast<double>(frequency), samples, samples}}, "t_Sound");
}

void t_Play(std::string_view music) {
  SoundQueue& queue = soundQueue();
  const MusicReading reading = readMusic(music, queue.musicSettings());
  if (reading.ErrorPosition != 0) {
    logLine("t_Play: Illegal music at position ", reading.ErrorPosition, ".");
    return;
  }
  queue.setMusicSettings(reading.Settings);
  if (reading.Tones.empty()) return;
  queue.startOutput("t_Play");
  const SoundQueue::Placement placement = queue.add(reading.Tones, "t_Play");
  if (!reading.Settings.Background) queue.waitFor(placement);
}

void t_SoundWait() {
  soundQueue().waitForAll();
}

void t_SoundStop() {
  soundQueue().stop();
}

bool t_SoundBusy() {
  return soundQueue().busy();
}

std::size_t pullSoundSamples(std::int16_t* out, std::size_t count) {
  return soundQueue().pull(out, count);
}

std::vector<double> queuedToneFrequencies() {
  return soundQueue().frequencies();
}

}  // namespace rvtools
