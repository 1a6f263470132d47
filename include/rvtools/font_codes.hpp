// SPDX-License-Identifier: MIT
// rvtools: the characters that the font codes show.
//
// A window's text memory holds font codes 0..255, not Unicode. This table names, for each code,
// the Unicode character that the runtime's fonts draw for it: 0..14 the quarter blocks of
// low-resolution graphics (3 is the upper half block), 15..31 shades, box lines and arrows,
// 32..126 ASCII, 127 a diamond, 156 the line of t_TextLine, the codes that the keyboard's option
// characters produce the characters typed, further box lines and shapes from 133 to 159, and
// Latin-1 from 160 on. Copying a screen as text, the terminal host, the font compiler and the
// manual's character chart all read it.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "rvtools/types.hpp"

namespace rvtools {

inline constexpr std::array<char32_t, 256> FontCodeCharacters = [] {
  std::array<char32_t, 256> table{};
  // Quarter blocks: code 15 - mask, with the quarters weighted upper left 8, upper right 4,
  // lower left 2, lower right 1.
  constexpr char32_t QuarterBlocks[15] = {
      U'█', U'▛', U'▜', U'▀', U'▙', U'▌', U'▚', U'▘', U'▟', U'▞', U'▐', U'▝', U'▄', U'▖', U'▗',
  };
  constexpr char32_t Symbols15To31[17] = {
      U'░', U'▒', U'▓', U'│', U'┌', U'┐', U'└', U'┘', U'├',
      U'┤', U'┬', U'┴', U'┼', U'←', U'→', U'↑', U'↓',
  };
  constexpr char32_t Symbols128To159[32] = {
      U'Ω', U'⁄', U'ƒ', U'ª', U'≈', U'═', U'║', U'╔', U'╗', U'╚', U'╝',
      U'╠', U'╣', U'╦', U'╩', U'╬', U'◀', U'▶', U'▲', U'▼', U'●', U'○',
      U'■', U'□', U'╱', U'╲', U'–', U'╳', U'─', U'▔', U'▁', U'▏',
  };
  // Latin-1 positions that show the keyboard's option characters instead.
  constexpr std::pair<int, char32_t> OptionCharacters[] = {
      {0xA3, U'“'}, {0xA4, U'€'}, {0xA6, U'¿'}, {0xA8, U'‚'}, {0xAC, U'≠'}, {0xAD, U'∂'},
      {0xB0, U'å'}, {0xB7, U'º'}, {0xB8, U'•'}, {0xBD, U'†'}, {0xBE, U'œ'}, {0xBF, U'…'},
      {0xC5, U'≤'}, {0xC6, U'≥'}, {0xD0, U'∏'}, {0xDD, U'∑'}, {0xDE, U'∫'}, {0xF0, U'π'},
      {0xFD, U'√'}, {0xFE, U'∆'}, {0xFF, U'∞'},
  };
  for (int code = 0; code < 15; ++code) table[code] = QuarterBlocks[code];
  for (int code = 15; code < 32; ++code) table[code] = Symbols15To31[code - 15];
  for (int code = 32; code < 127; ++code) table[code] = static_cast<char32_t>(code);
  table[127] = U'◆';
  for (int code = 128; code < 160; ++code) table[code] = Symbols128To159[code - 128];
  for (int code = 160; code < 256; ++code) table[code] = static_cast<char32_t>(code);
  for (const auto& [code, character] : OptionCharacters) table[code] = character;
  return table;
}();

// The character that the fonts draw for `code`.
constexpr char32_t fontCodeCharacter(UInt8 code) {
  return FontCodeCharacters[code];
}

// Text whose characters are font codes (Unicode scalars 0..255, as t_GetScreen gives them)
// as the characters the fonts draw, in UTF-8; a scalar above 255 stays as it is.
std::string unicodeOfFontCodes(std::string_view codes);

// The text screen of graphic window `window` as Unicode: every line of its text memory, blanks
// at its end removed, ended by a line feed. Empty, with t_GetScreen's log line, for a window
// without text memory.
std::string unicodeScreenText(UInt8 window);

}  // namespace rvtools
