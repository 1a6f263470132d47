// SPDX-License-Identifier: MIT
// Whether a window has a picture to read: a graphic window 0..7 whose memory and record are
// initialised.
#include "picture/window_picture.hpp"

#include "rvtools/runtime.hpp"

namespace rvtools::picture {

std::optional<std::string> missingWindow(UInt8 window) {
  if (window >= GraphicWindowCount) return "Window is not a graphic window.";
  if (!MemoryInitialized || !Windows[window].Initialized) {
    return "Window #" + std::to_string(window) + " not initialized.";
  }
  return std::nullopt;
}

}  // namespace rvtools::picture
