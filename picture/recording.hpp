// SPDX-License-Identifier: MIT
// Internal: one window's recording. The refresh side (FrameCapture) composes the window's
// picture after each refresh, keeps it when it changed and offers the changed rows to a bounded
// queue (FrameQueue); an encoder thread of the recording's own takes them from there and writes
// the GIF (FrameEncoder). When the encoder falls behind, pictures are dropped, never waited for.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "picture/file_output.hpp"
#include "picture/frame_encoder.hpp"
#include "rvtools/types.hpp"

namespace rvtools::picture {

// Frames on their way from the refresh to the encoder, at most `capacity` at a time, in
// buffers that are used again and again. One party offers, one takes.
class FrameQueue {
 public:
  explicit FrameQueue(std::size_t capacity) : capacity_(capacity) {}

  // Calls `fill` on a free buffer outside the lock and queues it; false, without calling it,
  // when `capacity` frames wait already (unless `evenWhenFull`).
  template <typename Fill>
  bool offer(const Fill& fill, bool evenWhenFull = false) {
    CapturedFrame frame;
    {
      std::lock_guard lock(mutex_);
      if (queue_.size() >= capacity_ && !evenWhenFull) return false;
      if (!spare_.empty()) {
        frame = std::move(spare_.back());
        spare_.pop_back();
      }
    }
    fill(frame);
    push(std::move(frame));
    return true;
  }
  // The next frame, waiting for one; nothing once the queue is closed and empty.
  std::optional<CapturedFrame> take();
  // Gives a taken frame's buffer back for another frame.
  void recycle(CapturedFrame frame);
  void close();

 private:
  void push(CapturedFrame frame);

  const std::size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<CapturedFrame> queue_;
  std::vector<CapturedFrame> spare_;
  bool closed_ = false;
};

// The refresh side of a recording: the window's picture at the recording's size (a window
// initialised anew at another size is cut or filled with black at the right and bottom).
class FrameCapture {
 public:
  FrameCapture(UInt8 window, int width, int height, FrameQueue& queue);

  // Takes the window's picture, shown at `now`, and offers it when it changed; the last one is
  // queued `evenWhenFull`. A picture is composed again only when pictureVersion moved or a
  // second has passed, for what a program writes straight into VideoMemory.
  void take(RecordingClock::time_point now, bool last = false);
  // Changed pictures that never reached the encoder.
  std::uint64_t dropped() const { return dropped_; }

 private:
  const std::uint8_t* compose();
  void keepChanges(const std::uint8_t* picture, RecordingClock::time_point now);
  bool handOn(bool evenWhenFull);

  UInt8 window_;
  int width_;
  int height_;
  FrameQueue& queue_;
  std::vector<std::uint8_t> composed_;  // at the window's own size
  std::vector<std::uint8_t> fitted_;    // at the recording's size, when the two differ
  std::vector<std::uint8_t> taken_;     // the last picture that changed
  std::optional<std::uint64_t> composedVersion_;
  RecordingClock::time_point composedAt_;
  RecordingClock::time_point takenAt_;
  bool tookAny_ = false;
  int unsentTop_ = 0;  // rows of taken_ not yet handed on
  int unsentBottom_ = -1;
  std::uint64_t dropped_ = 0;
};

class Recording {
 public:
  // Opens the file under a temporary name; failure() says why it could not.
  Recording(UInt8 window, std::string path);
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  const std::optional<std::string>& failure() const { return file_.failure(); }
  const std::string& path() const { return path_; }
  // Takes the first picture and starts the encoder.
  void start();
  // After a refresh: takes the picture if it changed. Any thread; it never waits for the encoder.
  void takeFrame();

  struct Outcome {
    int Pictures = 0;  // changed pictures that reached the encoder
    std::uint64_t Dropped = 0;
    std::optional<std::string> Failure;  // why the file could not be written
  };
  // Takes the last picture, waits for the encoder to write what is queued, finishes the file.
  Outcome finish();

 private:
  void encode();

  std::string path_;
  PendingFile file_;
  FrameQueue queue_;
  std::mutex captureMutex_;  // one picture taken at a time
  FrameCapture capture_;
  bool finished_ = false;
  FrameEncoder encoder_;
  RecordingClock::time_point end_;
  std::optional<std::string> encodingFailure_;
  std::thread encoderThread_;
};

}  // namespace rvtools::picture
