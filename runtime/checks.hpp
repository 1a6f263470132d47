// SPDX-License-Identifier: MIT
// Internal: the entry checks that every operation on a graphic window makes, and safe access
// to the cells of a window's text memory.
#pragma once

#include <string_view>

#include "rvtools/runtime.hpp"

namespace rvtools {

enum class Needs { Window, TextMemory };

// The record of graphic window `window` when `operation` may work on it. Otherwise logs
// "<operation>: Window is not a graphic window." or "<operation>: Window #n not initialized."
// and returns null.
t_Window* checkedWindow(std::string_view operation, UInt8 window, Needs needs = Needs::Window);

// The window's text memory: characters in the first half, colour bytes in the second.
struct TextCells {
  Int start = -1;  // address of the first character byte
  Int half = 0;    // bytes from a character to its colour byte
  Int width = 0;   // TextWidth

  // Address of the character byte of (column, line), counted from 1; -1 when the cell lies
  // outside the character half or the text block outside the video memory.
  Int characterAddress(Int column, Int line) const;
};

TextCells textCells(const t_Window& record);

// Whether `depth` is one of the bit depths a graphic memory can have: 1, 4, 8, 16, 24, 32.
bool isSupportedDepth(Int depth);

// The bytes of a picture of width x height pixels at `depth` bits, rows without padding.
Int pictureByteCount(Int width, Int height, Int depth);

// Whether the picture that the record describes lies inside the window's block of the video
// memory, so that drawing into it cannot reach another block.
bool pictureInsideBlock(const t_Window& record);

}  // namespace rvtools
