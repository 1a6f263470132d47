// SPDX-License-Identifier: MIT
// Internal: a window's graphic memory as the composition reads it, and what its pixels show.
// The pixel operations read the picture through these, so that a pixel they read back is the
// pixel t_WindowImage shows.
#pragma once

#include <cstdint>
#include <optional>

#include "rvtools/types.hpp"

namespace rvtools {

// A picture of width x height pixels at `depth` bits, rows without padding: pixel (x, y) is
// pixel y x width + x of the memory.
struct Picture {
  UInt8* memory;
  Int width;
  Int height;
  Int depth;
};

// The window's graphic memory, when its size and depth are those of a picture and every byte
// that composing reads lies inside the window's block; nothing otherwise. Logs nothing, and
// serves hidden windows as well.
std::optional<Picture> pictureOf(const t_Window& record);

// The colour that pixel (x, y) of the picture shows, as 0xRRGGBB.
std::uint32_t shownColour(const Picture& picture, Int x, Int y);

// Composes the pixels x..x + count - 1 of row y into `out`, bytes alpha, red, green, blue.
void composeRow(const Picture& picture, Int x, Int y, Int count, UInt8* out);

}  // namespace rvtools
