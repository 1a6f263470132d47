// SPDX-License-Identifier: MIT
// Internal: the encoding half of a recording. It takes the pictures that the refresh took, each
// with the moment it was shown, and writes them as GIF frames: the first whole, every later one
// as the rectangle that changed, its unchanged pixels transparent. A frame's delay is known only
// when the next picture arrives, so one picture always waits. A picture of more colours than a
// GIF frame holds is drawn in parts of two centiseconds each while its delay leaves room for
// them, and always when it is the last; otherwise it is quantised, and the next frame that can
// puts the exact colours back.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "picture/gif_stream.hpp"
#include "picture/indexed_frame.hpp"

namespace rvtools::picture {

using RecordingClock = std::chrono::steady_clock;

// A picture as the refresh took it: the rows that changed since the picture before it (all rows
// for the first), and the moment it was shown.
struct CapturedFrame {
  RecordingClock::time_point Time;
  int FirstRow = 0;
  int RowCount = 0;
  std::vector<std::uint8_t> Rows;  // RowCount rows, 4 bytes a pixel: alpha, red, green, blue
};

class FrameEncoder {
 public:
  FrameEncoder(PendingFile& file, int width, int height);

  void add(const CapturedFrame& frame);
  // Leaves the last picture shown until `end` and finishes the file; the reason when it could
  // not be written.
  std::optional<std::string> finish(RecordingClock::time_point end);
  // How many pictures have been given so far.
  int pictures() const { return pictures_; }

 private:
  int centisecondsAt(RecordingClock::time_point time) const;
  void writeNextPicture(int until, bool last);
  bool indexNextPicture(int partsAllowed, Area& area);
  Area differingArea(const std::vector<std::uint8_t>& reference, int top, int bottom) const;
  void showParts();

  GifStream gif_;
  int width_;
  int height_;
  std::vector<std::uint8_t> previous_;  // the picture of the frame written last
  std::vector<std::uint8_t> shown_;     // what a viewer shows: previous_, but for quantised colours
  std::vector<std::uint8_t> next_;      // the picture whose delay is not yet known
  RecordingClock::time_point origin_;
  int pictures_ = 0;
  bool written_ = false;  // a frame has been written
  bool waiting_ = false;  // a picture waits in next_
  int waitingSince_ = 0;  // centiseconds from the first picture
  int changedTop_ = 0;    // rows of next_ that may differ from previous_
  int changedBottom_ = -1;
  int approximateTop_ = 0;  // rows where shown_ may differ from previous_
  int approximateBottom_ = -1;
  std::vector<IndexedFrame> parts_;
  std::optional<std::string> failure_;
};

}  // namespace rvtools::picture
