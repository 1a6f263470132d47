// SPDX-License-Identifier: MIT
// The encoding half of a recording: pictures with their moments in, GIF frames with delays out.
//
// Delays are counted from the first picture in whole centiseconds, each frame's delay the
// difference of its neighbours' rounded moments, so that the rounding never adds up: the delays
// of a recording sum to its length to within half a centisecond. A picture that would be shown
// for less than two centiseconds is replaced by the one after it, since browsers show such short
// frames for a tenth of a second. For the same reason a part of a picture drawn in several parts
// lasts two centiseconds; the last picture of a recording may last a little longer than the
// recording so that all its parts are drawn exactly.
#include "picture/frame_encoder.hpp"

#include <algorithm>
#include <cstring>

namespace rvtools::picture {
namespace {

constexpr int ShortestDelay = 2;

std::size_t rowBytes(int width) {
  return static_cast<std::size_t>(width) * 4;
}

}  // namespace

FrameEncoder::FrameEncoder(PendingFile& file, int width, int height)
    : gif_(file, width, height),
      width_(width),
      height_(height),
      previous_(rowBytes(width) * height),
      shown_(previous_.size()),
      next_(previous_.size()) {}

int FrameEncoder::centisecondsAt(RecordingClock::time_point time) const {
  const auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>(time - origin_);
  return static_cast<int>((elapsed.count() + 5000) / 10000);
}

void FrameEncoder::add(const CapturedFrame& frame) {
  if (pictures_++ == 0) origin_ = frame.Time;
  const int at = centisecondsAt(frame.Time);
  if (waiting_ && at - waitingSince_ >= ShortestDelay) writeNextPicture(at, false);
  if (!waiting_) waitingSince_ = at;
  const int first = std::clamp(frame.FirstRow, 0, height_);
  const int count = std::clamp(frame.RowCount, 0, height_ - first);
  std::memcpy(next_.data() + rowBytes(width_) * first, frame.Rows.data(),
              std::min(rowBytes(width_) * count, frame.Rows.size()));
  if (count > 0) {
    changedTop_ = waiting_ ? std::min(changedTop_, first) : first;
    changedBottom_ = waiting_ ? std::max(changedBottom_, first + count - 1) : first + count - 1;
  }
  waiting_ = true;
}

// The smallest rectangle around the pixels of next_ that differ from `reference` in rows `top`
// to `bottom`.
Area FrameEncoder::differingArea(const std::vector<std::uint8_t>& reference, int top,
                                 int bottom) const {
  const std::size_t bytes = rowBytes(width_);
  const auto differs = [&](int row) {
    return std::memcmp(next_.data() + bytes * row, reference.data() + bytes * row, bytes) != 0;
  };
  while (top <= bottom && !differs(top)) ++top;
  while (bottom > top && !differs(bottom)) --bottom;
  if (top > bottom) return {};
  int left = width_, right = -1;
  for (int row = top; row <= bottom; ++row) {
    const std::uint8_t* now = next_.data() + bytes * row;
    const std::uint8_t* before = reference.data() + bytes * row;
    for (int x = 0; x < left; ++x) {
      if (std::memcmp(now + 4 * x, before + 4 * x, 4) != 0) left = x;
    }
    for (int x = width_ - 1; x > right; --x) {
      if (std::memcmp(now + 4 * x, before + 4 * x, 4) != 0) right = x;
    }
  }
  return {left, top, right - left + 1, bottom - top + 1};
}

// Chooses the parts of the next frame and the area they cover. Everything the viewer shows
// wrongly is drawn when its colours can be kept exactly; when they cannot, only what changed
// since the last frame is drawn, quantised if need be.
bool FrameEncoder::indexNextPicture(int partsAllowed, Area& area) {
  const PictureView picture{next_.data(), width_, height_};
  if (!written_) {
    area = {0, 0, width_, height_};
    return indexFrame(picture, nullptr, area, partsAllowed, Quantising::Allowed, parts_);
  }
  const bool approximate = approximateTop_ <= approximateBottom_;
  area = approximate ? differingArea(shown_, std::min(changedTop_, approximateTop_),
                                     std::max(changedBottom_, approximateBottom_))
                     : differingArea(shown_, changedTop_, changedBottom_);
  if (area.empty()) return true;
  const Quantising quantising = approximate ? Quantising::Refused : Quantising::Allowed;
  if (indexFrame(picture, shown_.data(), area, partsAllowed, quantising, parts_)) return true;
  if (!approximate) return false;
  area = differingArea(previous_, changedTop_, changedBottom_);
  return area.empty() ||
         indexFrame(picture, previous_.data(), area, partsAllowed, Quantising::Allowed, parts_);
}

// Draws the parts written last into shown_, as a viewer does, and notes where its colours are
// approximate.
void FrameEncoder::showParts() {
  bool quantised = false;
  for (const IndexedFrame& part : parts_) {
    const Area& area = part.Place;
    const std::uint8_t* index = part.Indices.data();
    for (int y = 0; y < area.Height; ++y) {
      std::uint8_t* pixel = shown_.data() + rowBytes(width_) * (area.Top + y) + 4 * area.Left;
      for (int x = 0; x < area.Width; ++x, ++index, pixel += 4) {
        if (part.Transparent == *index) continue;
        const std::array<std::uint8_t, 3>& colour = part.Colours[*index];
        pixel[0] = 255;
        std::copy(colour.begin(), colour.end(), pixel + 1);
      }
    }
    quantised = quantised || part.Quantised;
  }
  const Area& area = parts_.front().Place;
  if (quantised) {
    const bool before = approximateTop_ <= approximateBottom_;
    approximateTop_ = before ? std::min(approximateTop_, area.Top) : area.Top;
    approximateBottom_ = std::max(before ? approximateBottom_ : -1, area.Top + area.Height - 1);
  } else if (approximateTop_ <= approximateBottom_ &&
             std::memcmp(shown_.data(), next_.data(), shown_.size()) == 0) {
    approximateTop_ = 0;
    approximateBottom_ = -1;
  }
}

void FrameEncoder::writeNextPicture(int until, bool last) {
  const int delay = until - waitingSince_;
  waiting_ = false;
  Area area;
  if (!indexNextPicture(last ? MostParts : delay / ShortestDelay, area)) {
    if (!failure_) failure_ = "not enough memory to choose a frame's colours";
    return;
  }
  if (area.empty()) {
    gif_.addPause(delay);
  } else {
    const int earlierParts = static_cast<int>(parts_.size()) - 1;
    for (int part = 0; part < earlierParts; ++part) gif_.addFrame(parts_[part], ShortestDelay);
    gif_.addFrame(parts_.back(), std::max(delay - ShortestDelay * earlierParts, ShortestDelay));
    showParts();
    written_ = true;
  }
  const std::size_t bytes = rowBytes(width_);
  if (changedTop_ <= changedBottom_) {
    std::memcpy(previous_.data() + bytes * changedTop_, next_.data() + bytes * changedTop_,
                bytes * (changedBottom_ - changedTop_ + 1));
  }
}

std::optional<std::string> FrameEncoder::finish(RecordingClock::time_point end) {
  if (waiting_) {
    writeNextPicture(std::max(centisecondsAt(end), waitingSince_ + ShortestDelay), true);
  }
  if (failure_) return failure_;
  return gif_.finish();
}

}  // namespace rvtools::picture
