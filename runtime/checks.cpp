// SPDX-License-Identifier: MIT
// Entry checks of the graphic-window operations and text-cell addressing.
#include "runtime/checks.hpp"

#include "runtime/log.hpp"

namespace rvtools {

t_Window* checkedWindow(std::string_view operation, UInt8 window, Needs needs) {
  if (window >= GraphicWindowCount) {
    logLine(operation, ": Window is not a graphic window.");
    return nullptr;
  }
  t_Window& record = Windows[window];
  if (!MemoryInitialized || !record.Initialized ||
      (needs == Needs::TextMemory && record.TextMemoryStart < 0)) {
    logLine(operation, ": Window #", window, " not initialized.");
    return nullptr;
  }
  return &record;
}

bool isSupportedDepth(Int depth) {
  return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

Int pictureByteCount(Int width, Int height, Int depth) {
  if (depth == 1) return width * height / 8;
  if (depth == 4) return width * height / 2;
  return height * depth * width / 8;
}

bool pictureInsideBlock(const t_Window& record) {
  const Int width = record.Width, height = record.Height, start = record.MemoryStart;
  const bool sized =
      width >= 1 && height >= 1 && width <= LargestPictureSide && height <= LargestPictureSide;
  if (!sized || start < 0) return false;
  const Int last = start + pictureByteCount(width, height, record.BitDepth) - 1;
  return last <= record.MemoryEnd && last < static_cast<Int>(VideoMemory.size());
}

TextCells textCells(const t_Window& record) {
  const Int start = record.TextMemoryStart;
  const Int end = record.TextMemoryEnd;
  // A block that cannot lie inside the video memory has no cells.
  if (start < 0 || end < start || end >= VideoMemorySize) return {start, 0, record.TextWidth};
  return {start, (end - start + 1) / 2, record.TextWidth};
}

Int TextCells::characterAddress(Int column, Int line) const {
  if (start < 0 || half <= 0 || start + 2 * half > static_cast<Int>(VideoMemory.size())) return -1;
  if (column < 1 || line < 1 || width < 1 || column > half || line > half) return -1;
  Int offset = 0;
  if (__builtin_mul_overflow(width, line - 1, &offset)) return -1;
  if (__builtin_add_overflow(offset, column - 1, &offset) || offset >= half) return -1;
  return start + offset;
}

}  // namespace rvtools
