// SPDX-License-Identifier: MIT
// Internal: font resource files and the LZW expansion of their glyph data.
//
// parseFontResource turns the bytes of a font resource file into a t_Font exactly as
// t_LoadFontResource does, log lines included, so that it can be driven without a file.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// Glyph data never expands beyond what 256 glyphs of 255 x 255 pixels need, so that a hostile
// file cannot exhaust memory.
inline constexpr std::size_t MaximumGlyphDataSize = 256 * 255 * 255;
// The widest LZW code accepted; 24 bits number more codes than the largest glyph data can use.
inline constexpr int MaximumCodeWidth = 24;
// Bytes 0..13 hold the fields up to the glyph height; a shorter file is refused.
inline constexpr std::size_t MinimumFontFileSize = 14;

// The font record of a font resource file's bytes; `fileName` names the file in messages.
// Refusals log their line and return a record with empty Data.
t_Font parseFontResource(const std::vector<UInt8>& bytes, const std::string& fileName);

// Expands compressed glyph data: byte 0 is the code width in bits, the rest a stream of codes,
// most significant bit first. Empty when the data is corrupt or would expand beyond
// MaximumGlyphDataSize.
std::vector<UInt8> expandGlyphData(std::span<const UInt8> compressed);

}  // namespace rvtools
