// SPDX-License-Identifier: MIT
// Internal: a colour table for pixels of more colours than a GIF table holds, by median cut.
// The colours are counted in cells of 32 x 32 x 32 (five bits a channel). Starting from one box
// around all of them, the box whose longest side is longest is cut across that side where half
// of its pixels lie on either side, until the table is full or no box holds two cells. Each
// box's colour is the mean of its pixels' exact colours, so a box of one colour keeps it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace rvtools::picture {

using Rgb = std::array<std::uint8_t, 3>;

struct ColourTableOfPixels {
  std::vector<Rgb> Colours;           // at most the size asked for
  std::vector<std::uint8_t> Indices;  // one a pixel, into Colours
};

// The table of at most `tableSize` (1..256) colours for `pixels`, and each pixel's index.
ColourTableOfPixels medianCut(const std::vector<Rgb>& pixels, int tableSize);

}  // namespace rvtools::picture
