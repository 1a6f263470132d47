// SPDX-License-Identifier: MIT
// t_RecordStart, t_RecordStop, t_IsRecording and setRecordingObserver: the recordings of the
// eight graphic windows. While any window records, the recordings own the runtime's frame
// listener, which hands every refresh to the recording of its window. The end of the
// application finishes every recording that is still running.
#include <algorithm>
#include <array>
#include <memory>
#include <mutex>

#include "picture/recording.hpp"
#include "picture/window_picture.hpp"
#include "rvtools/display.hpp"
#include "rvtools/picture.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

using picture::Recording;

struct Recordings {
  std::mutex mutex;
  std::array<std::shared_ptr<Recording>, GraphicWindowCount> byWindow;
  bool finishesAtTermination = false;
};

Recordings& recordings() {
  static auto* all = new Recordings;
  return *all;
}

std::shared_ptr<Recording> recordingOf(UInt8 window) {
  std::lock_guard lock(recordings().mutex);
  return window < GraphicWindowCount ? recordings().byWindow[window] : nullptr;
}

void takeFrame(UInt8 window) {
  if (const std::shared_ptr<Recording> recording = recordingOf(window)) recording->takeFrame();
}

void stopEveryRecording() {
  for (UInt8 window = 0; window < GraphicWindowCount; ++window) {
    if (t_IsRecording(window)) t_RecordStop(window);
  }
}

// Called with the lock held, after a recording came or went.
void followRecordings(Recordings& all) {
  const bool any = std::any_of(all.byWindow.begin(), all.byWindow.end(),
                               [](const std::shared_ptr<Recording>& r) { return r != nullptr; });
  setFrameListener(any ? std::function<void(UInt8)>(takeFrame) : nullptr);
  if (any && !all.finishesAtTermination) {
    all.finishesAtTermination = true;
    addTerminationStep(stopEveryRecording);
  }
}

HandlerSlot<void(UInt8, bool)>& recordingObserver() {
  static auto* observer = new HandlerSlot<void(UInt8, bool)>;
  return *observer;
}

void tellObserver(UInt8 window, bool recording) {
  recordingObserver().callIfSet(window, recording);
}

std::string couldNotWrite(const std::string& path, const std::string& failure) {
  return "Could not write „" + path + "“: " + failure + ".";
}

// Starts the recording unless the window records already; the reason when it could not.
std::optional<std::string> startRecording(UInt8 window, const std::string& path) {
  Recordings& all = recordings();
  std::lock_guard lock(all.mutex);
  if (all.byWindow[window])
    return "Window #" + std::to_string(window) + " is being recorded already.";
  auto recording = std::make_shared<Recording>(window, path);
  if (recording->failure()) return couldNotWrite(path, *recording->failure());
  recording->start();
  all.byWindow[window] = std::move(recording);
  followRecordings(all);
  return std::nullopt;
}

std::shared_ptr<Recording> takeRecordingAway(UInt8 window) {
  Recordings& all = recordings();
  std::lock_guard lock(all.mutex);
  if (window >= GraphicWindowCount || !all.byWindow[window]) return nullptr;
  std::shared_ptr<Recording> recording = std::move(all.byWindow[window]);
  followRecordings(all);
  return recording;
}

}  // namespace

bool t_RecordStart(UInt8 window, const std::string& path) {
  std::optional<std::string> refusal = picture::missingWindow(window);
  if (!refusal) refusal = startRecording(window, path);
  if (refusal) {
    t_Log("t_RecordStart: " + *refusal);
    return false;
  }
  tellObserver(window, true);
  return true;
}

bool t_RecordStop(UInt8 window) {
  const std::shared_ptr<Recording> recording = takeRecordingAway(window);
  if (!recording) {
    t_Log("t_RecordStop: Window #" + std::to_string(window) + " is not being recorded.");
    return false;
  }
  const Recording::Outcome outcome = recording->finish();
  tellObserver(window, false);
  const std::string number = std::to_string(window);
  if (outcome.Dropped > 0) {
    t_Log("t_RecordStop: Window #" + number + " dropped " + std::to_string(outcome.Dropped) +
          " frames while the encoder fell behind.");
  }
  if (outcome.Pictures == 0) {
    t_Log("t_RecordStop: Window #" + number + " showed no picture, „" + recording->path() +
          "“ was not written.");
    return false;
  }
  if (outcome.Failure) {
    t_Log("t_RecordStop: " + couldNotWrite(recording->path(), *outcome.Failure));
    return false;
  }
  return true;
}

bool t_IsRecording(UInt8 window) {
  return recordingOf(window) != nullptr;
}

void setRecordingObserver(std::function<void(UInt8 window, bool recording)> observer) {
  recordingObserver().set(std::move(observer));
}

}  // namespace rvtools
