// SPDX-License-Identifier: MIT
// Internal: what a glyph pixel becomes in graphic memory. A glyph's grey value mixes an ink and a
// paper colour, and the mix is stored as the window's depth stores a pixel: a bit (1), the
// nearest palette colour (4), a grey (8 and 16) or red, green and blue (24 and 32). Glyph
// rendering builds its tables from glyphShade; the pixel operations store their pen through it
// as a fully inked pixel, so that text and drawings look alike at every depth. The functions are
// inline so that a caller that reads one field of a shade pays for that field alone.
#pragma once

#include "rvtools/runtime.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// The grey value of a fully inked glyph pixel; 0 is pure paper.
inline constexpr int FullInk = 255;

// What one grey value of a glyph becomes for one ink and paper, at every depth.
struct Shade {
  UInt8 red, green, blue;  // depths 24 and 32
  UInt8 grey;              // depths 8 and 16
  UInt8 nibble;            // depth 4
  bool bit;                // depth 1
};

// mix(f, b) = f x g / 255 + (255 - g) x b / 255, each term truncated on its own.
constexpr int mix(int foreground, int background, int grey) {
  return foreground * grey / 255 + (255 - grey) * background / 255;
}

inline int greyOf(const t_RGBColor& colour) {
  return (colour.Red + colour.Green + colour.Blue) / 3;
}

// The palette colour nearest to (red, green, blue); greys map to the palette's four greys, and a
// tie goes to the lower number.
inline UInt8 nearestPaletteColour(int red, int green, int blue) {
  if (red == green && green == blue) {
    const int sum = red + green + blue;
    if (sum < 192) return 0;
    if (sum <= 383) return 5;
    if (sum < 576) return 10;
    return 15;
  }
  int best = 65535;
  UInt8 choice = 0;
  for (int n = 0; n < 16; ++n) {
    const int dr = red - PaletteRed[n], dg = green - PaletteGreen[n], db = blue - PaletteBlue[n];
    const int distance = dr * dr + dg * dg + db * db;
    if (distance < best) {
      best = distance;
      choice = static_cast<UInt8>(n);
    }
  }
  return choice;
}

// What a glyph pixel of grey value `grey` mixing `ink` and `paper` becomes at every depth. The
// grey of depths 8 and 16 mixes the greys of ink and paper; the bit of depth 1 is set where the
// mixed colour is at least half bright.
inline Shade glyphShade(const t_RGBColor& ink, const t_RGBColor& paper, int grey) {
  const int red = mix(ink.Red, paper.Red, grey);
  const int green = mix(ink.Green, paper.Green, grey);
  const int blue = mix(ink.Blue, paper.Blue, grey);
  return {static_cast<UInt8>(red),
          static_cast<UInt8>(green),
          static_cast<UInt8>(blue),
          static_cast<UInt8>(mix(greyOf(ink), greyOf(paper), grey)),
          nearestPaletteColour(red, green, blue),
          (red + green + blue) / 3 >= 128};
}

}  // namespace rvtools
