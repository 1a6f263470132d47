// SPDX-License-Identifier: MIT
// Internal: an animated GIF written frame by frame through giflib straight into a PendingFile,
// so that a recording of any length needs no more memory than one frame.
#pragma once

#include <optional>
#include <string>

#include "picture/file_output.hpp"
#include "picture/indexed_frame.hpp"

struct GifFileType;

namespace rvtools::picture {

class GifStream {
 public:
  // Starts an animation of width x height pixels in `file` that plays once.
  GifStream(PendingFile& file, int width, int height);
  ~GifStream();
  GifStream(const GifStream&) = delete;
  GifStream& operator=(const GifStream&) = delete;

  // Draws `frame` over what is shown and leaves it for `delay` centiseconds.
  void addFrame(const IndexedFrame& frame, int delay);
  // Leaves what is shown for `delay` more centiseconds.
  void addPause(int delay);
  // Ends the animation and gives the file its name; the reason when any step failed.
  std::optional<std::string> finish();

 private:
  void check(int result);
  void putControl(int delay, int transparentIndex);
  void putImage(const IndexedFrame& frame);

  PendingFile& file_;
  GifFileType* gif_ = nullptr;
  int error_ = 0;  // giflib's first error code, 0 while all went well
};

}  // namespace rvtools::picture
