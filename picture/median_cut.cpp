// SPDX-License-Identifier: MIT
// Median cut over the cells of five bits a channel that the pixels occupy (median_cut.hpp).
#include "picture/median_cut.hpp"

#include <algorithm>
#include <cmath>

namespace rvtools::picture {
namespace {

constexpr int CellBits = 5;
constexpr int CellCount = 1 << (3 * CellBits);

int cellOf(const Rgb& colour) {
  return (colour[0] >> 3) << (2 * CellBits) | (colour[1] >> 3) << CellBits | colour[2] >> 3;
}

int channelOfCell(int cell, int channel) {
  return (cell >> (CellBits * (2 - channel))) & ((1 << CellBits) - 1);
}

// The pixels of one cell: how many, and the sums of their exact channels for the mean.
struct CellPixels {
  std::uint64_t Count = 0;
  std::array<std::uint64_t, 3> Sums{};
};

// A run of the occupied cells, with the channel along which it is longest and that length.
struct Box {
  std::size_t Begin = 0, End = 0;
  int Channel = 0, Length = 0;
  std::uint64_t Pixels = 0;
};

Box boxOf(const std::vector<int>& cells, const std::vector<CellPixels>& histogram,
          std::size_t begin, std::size_t end) {
  std::array<int, 3> low{31, 31, 31}, high{0, 0, 0};
  std::uint64_t pixels = 0;
  for (std::size_t i = begin; i < end; ++i) {
    pixels += histogram[cells[i]].Count;
    for (int channel = 0; channel < 3; ++channel) {
      low[channel] = std::min(low[channel], channelOfCell(cells[i], channel));
      high[channel] = std::max(high[channel], channelOfCell(cells[i], channel));
    }
  }
  Box box{begin, end, 0, high[0] - low[0], pixels};
  for (int channel = 1; channel < 3; ++channel) {
    if (high[channel] - low[channel] > box.Length) {
      box.Channel = channel;
      box.Length = high[channel] - low[channel];
    }
  }
  return box;
}

double weight(const Box& box) {
  return static_cast<double>(box.Length) * static_cast<double>(box.Pixels);
}

// The box to cut next: of those with two cells or more, the one whose longest side is longest;
// nothing when every box is a single cell.
std::vector<Box>::iterator boxToCut(std::vector<Box>& boxes) {
  auto chosen = boxes.end();
  for (auto box = boxes.begin(); box != boxes.end(); ++box) {
    if (box->End - box->Begin < 2) continue;
    if (chosen == boxes.end() || weight(*box) > weight(*chosen)) chosen = box;
  }
  return chosen;
}

// Cuts `box` across its longest side where half of its pixels lie on either side, each half
// keeping at least one cell.
std::pair<Box, Box> cut(const Box& box, std::vector<int>& cells,
                        const std::vector<CellPixels>& histogram) {
  const auto first = cells.begin() + static_cast<std::ptrdiff_t>(box.Begin);
  const auto last = cells.begin() + static_cast<std::ptrdiff_t>(box.End);
  std::sort(first, last, [&](int a, int b) {
    return channelOfCell(a, box.Channel) < channelOfCell(b, box.Channel);
  });
  std::uint64_t total = 0;
  for (auto cell = first; cell != last; ++cell) total += histogram[*cell].Count;
  std::uint64_t below = 0;
  std::size_t middle = box.Begin + 1;
  for (std::size_t i = box.Begin; i + 1 < box.End; ++i) {
    below += histogram[cells[i]].Count;
    middle = i + 1;
    if (2 * below >= total) break;
  }
  return {boxOf(cells, histogram, box.Begin, middle), boxOf(cells, histogram, middle, box.End)};
}

void add(CellPixels& to, const CellPixels& pixels) {
  to.Count += pixels.Count;
  for (int channel = 0; channel < 3; ++channel) to.Sums[channel] += pixels.Sums[channel];
}

// The mean colour of pixels, rounded.
Rgb meanOf(const CellPixels& pixels) {
  Rgb colour{};
  for (int channel = 0; channel < 3; ++channel) {
    colour[channel] =
        static_cast<std::uint8_t>((pixels.Sums[channel] + pixels.Count / 2) / pixels.Count);
  }
  return colour;
}

Rgb meanColour(const Box& box, const std::vector<int>& cells,
               const std::vector<CellPixels>& histogram) {
  CellPixels pixels;
  for (std::size_t i = box.Begin; i < box.End; ++i) add(pixels, histogram[cells[i]]);
  return meanOf(pixels);
}

// Finds the colour of a table nearest to a colour (the least sum of squared differences). The
// colours are kept in order of red, and a search goes out from the red of the colour sought
// until the difference of red alone exceeds the nearest distance found.
class NearestColour {
 public:
  explicit NearestColour(const std::vector<Rgb>& table) {
    for (std::size_t index = 0; index < table.size(); ++index) {
      byRed_.push_back({table[index], static_cast<std::uint8_t>(index)});
    }
    std::sort(byRed_.begin(), byRed_.end(),
              [](const Entry& a, const Entry& b) { return a.Colour[0] < b.Colour[0]; });
  }

  std::uint8_t operator()(const Rgb& colour) const {
    const auto start = std::lower_bound(
        byRed_.begin(), byRed_.end(), colour[0],
        [](const Entry& entry, std::uint8_t red) { return entry.Colour[0] < red; });
    Found found;
    for (auto entry = start; entry != byRed_.end() && consider(*entry, colour, found); ++entry) {
    }
    for (auto entry = start; entry != byRed_.begin() && consider(*(entry - 1), colour, found);
         --entry) {
    }
    return found.Index;
  }

 private:
  struct Entry {
    Rgb Colour;
    std::uint8_t Index;
  };
  struct Found {
    int Distance = 1 << 30;
    std::uint8_t Index = 0;
  };

  // Takes `entry` when it is nearer; false once no entry further out in red can be nearer.
  static bool consider(const Entry& entry, const Rgb& colour, Found& found) {
    const int red = entry.Colour[0] - colour[0];
    if (red * red >= found.Distance) return false;
    const int green = entry.Colour[1] - colour[1], blue = entry.Colour[2] - colour[2];
    const int distance = red * red + green * green + blue * blue;
    if (distance < found.Distance) found = {distance, entry.Index};
    return true;
  }

  std::vector<Entry> byRed_;
};

// The index of the nearest colour of `table` for every occupied cell, by the mean of its pixels.
std::vector<std::uint8_t> nearestColours(const std::vector<int>& cells,
                                         const std::vector<CellPixels>& histogram,
                                         const std::vector<Rgb>& table) {
  const NearestColour nearest(table);
  std::vector<std::uint8_t> indexOfCell(CellCount);
  for (const int cell : cells) indexOfCell[cell] = nearest(meanOf(histogram[cell]));
  return indexOfCell;
}

// Moves each colour of the table to the mean of the pixels that chose it: a cell near the edge
// of its box may lie nearer another box's colour, and the colours follow what chose them.
void moveToMeans(const std::vector<int>& cells, const std::vector<CellPixels>& histogram,
                 const std::vector<std::uint8_t>& indexOfCell, std::vector<Rgb>& table) {
  std::vector<CellPixels> chosen(table.size());
  for (const int cell : cells) {
    add(chosen[indexOfCell[cell]], histogram[cell]);
  }
  for (std::size_t index = 0; index < table.size(); ++index) {
    if (chosen[index].Count > 0) table[index] = meanOf(chosen[index]);
  }
}

}  // namespace

ColourTableOfPixels medianCut(const std::vector<Rgb>& pixels, int tableSize) {
  ColourTableOfPixels result;
  if (pixels.empty() || tableSize < 1) return result;
  std::vector<CellPixels> histogram(CellCount);
  for (const Rgb& pixel : pixels)
    add(histogram[cellOf(pixel)], {1, {pixel[0], pixel[1], pixel[2]}});
  std::vector<int> cells;
  for (int cell = 0; cell < CellCount; ++cell) {
    if (histogram[cell].Count > 0) cells.push_back(cell);
  }
  std::vector<Box> boxes{boxOf(cells, histogram, 0, cells.size())};
  while (boxes.size() < static_cast<std::size_t>(std::min(tableSize, 256))) {
    const auto chosen = boxToCut(boxes);
    if (chosen == boxes.end()) break;
    const auto [lower, upper] = cut(*chosen, cells, histogram);
    *chosen = lower;
    boxes.push_back(upper);
  }
  for (const Box& box : boxes) result.Colours.push_back(meanColour(box, cells, histogram));
  std::vector<std::uint8_t> indexOfCell = nearestColours(cells, histogram, result.Colours);
  moveToMeans(cells, histogram, indexOfCell, result.Colours);
  indexOfCell = nearestColours(cells, histogram, result.Colours);
  result.Indices.reserve(pixels.size());
  for (const Rgb& pixel : pixels) result.Indices.push_back(indexOfCell[cellOf(pixel)]);
  return result;
}

}  // namespace rvtools::picture
