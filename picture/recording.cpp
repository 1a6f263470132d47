// SPDX-License-Identifier: MIT
// One window's recording: pictures taken after each refresh, handed through a bounded queue to
// an encoder thread that writes the GIF. The refresh side composes into buffers it keeps and
// copies only the rows that changed; when eight frames wait already, a picture is dropped and
// its rows travel with the next one that gets through.
#include "picture/recording.hpp"

#include <pthread.h>

#include <algorithm>
#include <cstring>

#include "rvtools/display.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools::picture {
namespace {

// Frames that may wait for the encoder: about a quarter of a second of refreshes.
constexpr std::size_t QueueCapacity = 8;

std::size_t rowBytes(int width) {
  return static_cast<std::size_t>(width) * 4;
}

// Copies the overlap of a picture of another size into `fitted`; the rest is opaque black.
void fitPicture(const std::vector<std::uint8_t>& picture, int width, int height,
                std::vector<std::uint8_t>& fitted, int fittedWidth, int fittedHeight) {
  fitted.resize(rowBytes(fittedWidth) * fittedHeight);
  for (std::size_t i = 0; i < fitted.size(); i += 4) {
    fitted[i] = 255;
    fitted[i + 1] = fitted[i + 2] = fitted[i + 3] = 0;
  }
  const std::size_t bytes = rowBytes(std::min(width, fittedWidth));
  for (int row = 0; row < std::min(height, fittedHeight); ++row) {
    std::memcpy(fitted.data() + rowBytes(fittedWidth) * row, picture.data() + rowBytes(width) * row,
                bytes);
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// FrameQueue

void FrameQueue::push(CapturedFrame frame) {
  {
    std::lock_guard lock(mutex_);
    queue_.push_back(std::move(frame));
  }
  changed_.notify_one();
}

std::optional<CapturedFrame> FrameQueue::take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return closed_ || !queue_.empty(); });
  if (queue_.empty()) return std::nullopt;
  CapturedFrame frame = std::move(queue_.front());
  queue_.pop_front();
  return frame;
}

void FrameQueue::recycle(CapturedFrame frame) {
  std::lock_guard lock(mutex_);
  if (spare_.size() < capacity_) spare_.push_back(std::move(frame));
}

void FrameQueue::close() {
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_one();
}

// ---------------------------------------------------------------------------------------------
// FrameCapture

FrameCapture::FrameCapture(UInt8 window, int width, int height, FrameQueue& queue)
    : window_(window),
      width_(width),
      height_(height),
      queue_(queue),
      taken_(rowBytes(width) * height) {}

void FrameCapture::take(RecordingClock::time_point now, bool last) {
  const std::uint64_t version = pictureVersion(window_);
  const bool composedIsCurrent =
      composedVersion_ == version && now - composedAt_ < std::chrono::seconds(1);
  if (!composedIsCurrent) {
    if (const std::uint8_t* picture = compose()) {
      composedVersion_ = version;
      composedAt_ = now;
      keepChanges(picture, now);
    }
  }
  if (unsentTop_ <= unsentBottom_) handOn(last);
}

// The window's picture at the recording's size; null when the window shows none.
const std::uint8_t* FrameCapture::compose() {
  const t_Window& record = Windows[window_];
  const int width = static_cast<int>(record.Width), height = static_cast<int>(record.Height);
  if (width <= 0 || height <= 0) return nullptr;
  composed_.resize(rowBytes(width) * height);
  if (!t_WindowImageInto(window_, composed_.data(), composed_.size(),
                         PixelOrder::AlphaRedGreenBlue)) {
    return nullptr;
  }
  if (width == width_ && height == height_) return composed_.data();
  fitPicture(composed_, width, height, fitted_, width_, height_);
  return fitted_.data();
}

// Copies the rows that differ from the last picture taken; a picture that changed while the one
// before it still waits to be handed on is lost.
void FrameCapture::keepChanges(const std::uint8_t* picture, RecordingClock::time_point now) {
  const std::size_t bytes = rowBytes(width_);
  const auto differs = [&](int row) {
    return !tookAny_ || std::memcmp(picture + bytes * row, taken_.data() + bytes * row, bytes) != 0;
  };
  int top = 0, bottom = height_ - 1;
  while (top <= bottom && !differs(top)) ++top;
  if (top > bottom) return;
  while (bottom > top && !differs(bottom)) --bottom;
  std::memcpy(taken_.data() + bytes * top, picture + bytes * top, bytes * (bottom - top + 1));
  if (unsentTop_ <= unsentBottom_) {
    ++dropped_;
    top = std::min(top, unsentTop_);
    bottom = std::max(bottom, unsentBottom_);
  }
  unsentTop_ = top;
  unsentBottom_ = bottom;
  takenAt_ = now;
  tookAny_ = true;
}

bool FrameCapture::handOn(bool evenWhenFull) {
  const std::size_t bytes = rowBytes(width_);
  const bool handed = queue_.offer(
      [&](CapturedFrame& frame) {
        frame.Time = takenAt_;
        frame.FirstRow = unsentTop_;
        frame.RowCount = unsentBottom_ - unsentTop_ + 1;
        const auto first = taken_.begin() + static_cast<std::ptrdiff_t>(bytes * unsentTop_);
        frame.Rows.assign(first, first + static_cast<std::ptrdiff_t>(bytes * frame.RowCount));
      },
      evenWhenFull);
  if (handed) {
    unsentTop_ = 0;
    unsentBottom_ = -1;
  }
  return handed;
}

// ---------------------------------------------------------------------------------------------
// Recording

Recording::Recording(UInt8 window, std::string path)
    : path_(std::move(path)),
      file_(path_),
      queue_(QueueCapacity),
      capture_(window, static_cast<int>(Windows[window].Width),
               static_cast<int>(Windows[window].Height), queue_),
      encoder_(file_, static_cast<int>(Windows[window].Width),
               static_cast<int>(Windows[window].Height)) {}

Recording::~Recording() {
  if (encoderThread_.joinable()) {
    queue_.close();
    encoderThread_.join();
  }
}

void Recording::start() {
  takeFrame();
  encoderThread_ = std::thread([this] { encode(); });
}

void Recording::takeFrame() {
  std::lock_guard lock(captureMutex_);
  if (!finished_) capture_.take(RecordingClock::now());
}

void Recording::encode() {
  pthread_setname_np(pthread_self(), "GIF encoder");
  while (std::optional<CapturedFrame> frame = queue_.take()) {
    encoder_.add(*frame);
    queue_.recycle(std::move(*frame));
  }
  if (encoder_.pictures() > 0) encodingFailure_ = encoder_.finish(end_);
}

Recording::Outcome Recording::finish() {
  {
    std::lock_guard lock(captureMutex_);
    if (finished_) return {};
    finished_ = true;
    capture_.take(RecordingClock::now(), true);
    end_ = RecordingClock::now();
  }
  queue_.close();
  encoderThread_.join();
  return {encoder_.pictures(), capture_.dropped(), encodingFailure_};
}

}  // namespace rvtools::picture
