// SPDX-License-Identifier: MIT
// Internal: a rectangle of a picture as GIF pixels, colour indices into a table of at most 256
// colours. The colours are exact whenever the rectangle needs no more than the table holds, or
// when it may be drawn in a few parts of up to 255 colours each; only beyond that does a median
// cut choose the table.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace rvtools::picture {

// A rectangle of a picture, in pixels from its upper left corner.
struct Area {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool empty() const { return Width <= 0 || Height <= 0; }
};

// A picture in memory: Width x Height pixels, rows from the top, bytes alpha, red, green, blue.
struct PictureView {
  const std::uint8_t* Pixels = nullptr;
  int Width = 0;
  int Height = 0;
};

struct IndexedFrame {
  Area Place;
  std::vector<std::array<std::uint8_t, 3>> Colours;  // red, green, blue; at most 256
  std::vector<std::uint8_t> Indices;        // Place.Width x Place.Height, rows from the top
  std::optional<std::uint8_t> Transparent;  // the index of pixels left as they were
  bool Quantised = false;                   // colours were approximated
};

// The most parts a picture is drawn in to keep its colours exact: 1020 colours.
inline constexpr int MostParts = 4;

// The pixels of `area` of `picture` as `parts`, drawn one over the other, at most `partsAllowed`
// of them. With `shown` (the picture the viewer shows now, of the same size) pixels that equal
// it become transparent; without it every pixel is drawn. False when the colours cannot be kept
// exactly and quantising is refused.
enum class Quantising { Allowed, Refused };
bool indexFrame(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                int partsAllowed, Quantising quantising, std::vector<IndexedFrame>& parts);

}  // namespace rvtools::picture
