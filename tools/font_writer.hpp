// SPDX-License-Identifier: MIT
// The writing side of font resource files: LZW compression of glyph data into the code stream
// that the runtime's loader expands, and complete files of format 102 (compressed grey).
#pragma once

#include <string>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools::fontwriter {

// Glyphs of codes Start..End in one grey byte per pixel, the glyph of code c at
// c x Width x Height in Data.
struct GlyphSet {
  UInt8 Start = 0;
  UInt8 End = 255;
  UInt8 Width = 0;
  UInt8 Height = 0;
  std::vector<UInt8> Data;
};

// The data part of a compressed font file: the code width byte, then the LZW codes of `bytes`
// packed most significant bit first, the last byte filled with zero bits. The width is that of
// the largest code emitted, at least 9 bits.
std::vector<UInt8> compressGlyphData(const std::vector<UInt8>& bytes);

// A whole format-102 font file: the 16-byte header, then the compressed glyph data. The
// header's size field holds the uncompressed data size.
std::vector<UInt8> fontFileBytes(const GlyphSet& glyphs);

// Writes `bytes` to `path`; false when the file could not be written completely.
bool writeFile(const std::string& path, const std::vector<UInt8>& bytes);

}  // namespace rvtools::fontwriter
