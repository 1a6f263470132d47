// SPDX-License-Identifier: MIT
// Quadrant-block cells for pixel drawings: the paper colour by count, the ink of each quarter
// by what differs from it.
#include "terminal/block_cells.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace rvtools::terminal {
namespace {

// The quadrant blocks by their inked quarters: bit 0 upper left, 1 upper right, 2 lower left,
// 3 lower right.
constexpr std::array<char32_t, 16> QuadrantBlocks = {
    U' ', U'▘', U'▝', U'▀', U'▖', U'▌', U'▞', U'▛', U'▗', U'▚', U'▐', U'▜', U'▄', U'▙', U'▟', U'█'};

std::uint32_t colourAt(const UInt8* pixels, Int width, Int x, Int y) {
  const UInt8* pixel = pixels + 4 * (y * width + x);
  return rgbColour(pixel[1], pixel[2], pixel[3]);
}

// The colour most pixels of the area have, counted in a small table, since a drawing's cell
// holds a few colours; nothing when the area has more colours than the table holds. Of equally
// frequent colours the smallest value wins.
std::optional<std::uint32_t> mostFrequentOfFewColours(const UInt8* pixels, Int width, Int left,
                                                      Int top, Int cellWidth, Int cellHeight) {
  constexpr std::size_t Kept = 8;
  std::array<std::uint32_t, Kept> colours{};
  std::array<Int, Kept> counts{};
  std::size_t kept = 0;
  for (Int y = top; y < top + cellHeight; ++y) {
    for (Int x = left; x < left + cellWidth; ++x) {
      const std::uint32_t colour = colourAt(pixels, width, x, y);
      std::size_t slot = 0;
      while (slot < kept && colours[slot] != colour) ++slot;
      if (slot == Kept) return std::nullopt;
      if (slot == kept) colours[kept++] = colour;
      ++counts[slot];
    }
  }
  std::size_t best = 0;
  for (std::size_t slot = 1; slot < kept; ++slot) {
    if (counts[slot] > counts[best] ||
        (counts[slot] == counts[best] && colours[slot] < colours[best])) {
      best = slot;
    }
  }
  return colours[best];
}

// The same for an area of many colours (a picture put with t_HPut), by sorting them.
std::uint32_t mostFrequentColourBySorting(const UInt8* pixels, Int width, Int left, Int top,
                                          Int cellWidth, Int cellHeight) {
  std::vector<std::uint32_t> all;
  all.reserve(static_cast<std::size_t>(cellWidth * cellHeight));
  for (Int y = top; y < top + cellHeight; ++y) {
    for (Int x = left; x < left + cellWidth; ++x) all.push_back(colourAt(pixels, width, x, y));
  }
  std::sort(all.begin(), all.end());
  std::uint32_t best = all.front();
  std::size_t bestRun = 0;
  for (std::size_t start = 0; start < all.size();) {
    std::size_t end = start;
    while (end < all.size() && all[end] == all[start]) ++end;
    if (end - start > bestRun) {
      bestRun = end - start;
      best = all[start];
    }
    start = end;
  }
  return best;
}

std::uint32_t mostFrequentColour(const UInt8* pixels, Int width, Int left, Int top, Int cellWidth,
                                 Int cellHeight) {
  if (const auto colour = mostFrequentOfFewColours(pixels, width, left, top, cellWidth, cellHeight))
    return *colour;
  return mostFrequentColourBySorting(pixels, width, left, top, cellWidth, cellHeight);
}

struct ColourSum {
  Int Red = 0, Green = 0, Blue = 0, Count = 0;
  void add(std::uint32_t colour) {
    Red += (colour >> 16) & 0xFF;
    Green += (colour >> 8) & 0xFF;
    Blue += colour & 0xFF;
    ++Count;
  }
  CellColour mean() const {
    return rgbColour(static_cast<UInt8>(Red / Count), static_cast<UInt8>(Green / Count),
                     static_cast<UInt8>(Blue / Count));
  }
};

}  // namespace

Cell blockCellOf(const UInt8* pixels, Int width, Int left, Int top, Int cellWidth, Int cellHeight) {
  if (cellWidth < 1 || cellHeight < 1) return {};
  const std::uint32_t paper = mostFrequentColour(pixels, width, left, top, cellWidth, cellHeight);
  // A cell one pixel wide (or high) has only left (or upper) quarters.
  const Int middleX = left + std::max<Int>(cellWidth / 2, 1);
  const Int middleY = top + std::max<Int>(cellHeight / 2, 1);
  unsigned inked = 0;
  ColourSum ink;
  for (Int y = top; y < top + cellHeight; ++y) {
    for (Int x = left; x < left + cellWidth; ++x) {
      const std::uint32_t colour = colourAt(pixels, width, x, y);
      if (colour == paper) continue;
      inked |= 1u << ((x >= middleX ? 1 : 0) + (y >= middleY ? 2 : 0));
      ink.add(colour);
    }
  }
  if (inked == 0) return {U' ', paper, paper};
  return {QuadrantBlocks[inked], ink.mean(), paper};
}

}  // namespace rvtools::terminal
