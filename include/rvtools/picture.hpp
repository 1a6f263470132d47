// rvtools: pictures of what a program shows, as image files.
//
// The picture library (rvtools::picture) writes a window's picture, the image that
// t_WindowImage composes, pixel for pixel, as a PNG file. Files are written under a temporary
// name beside the final one and renamed when complete, so that a failure never leaves half a
// file under the name asked for. The desktop and headless hosts link it; the core does not.
#pragma once

#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// Writes graphic window `window`'s current picture as a PNG file at `path`. False, with one
// log line, when the window has no picture (not a graphic window, not initialised, not
// visible) or the file cannot be written.
bool t_SavePicture(UInt8 window, const std::string& path);

}  // namespace rvtools
