// SPDX-License-Identifier: MIT
// GIF pixels from a rectangle of a picture. The colours of the rectangle are gathered in a small
// hash table; as long as they fit into a GIF colour table (255 colours beside the transparent
// index, or 256 when every pixel is drawn) they are kept exactly. Up to 1020 colours are kept
// exactly in parts: part n draws the pixels of colours 255n to 255n + 254 and leaves the others
// transparent. Beyond that a median cut of our own chooses the table (median_cut.hpp).
#include "picture/indexed_frame.hpp"

#include <cstring>

#include "picture/median_cut.hpp"

namespace rvtools::picture {
namespace {

constexpr int TableSize = 256;

std::uint32_t wordAt(const std::uint8_t* pixel) {
  std::uint32_t word;
  std::memcpy(&word, pixel, sizeof word);
  return word;
}

const std::uint8_t* rowOf(const std::uint8_t* pixels, int width, const Area& area, int y) {
  return pixels + 4 * (static_cast<std::size_t>(area.Top + y) * width + area.Left);
}

// The colours of a frame and their indices, found by open addressing on the pixel's four
// bytes; it refuses a colour once `limit` colours are in the frame's table.
class ColourTable {
 public:
  ColourTable(std::vector<std::array<std::uint8_t, 3>>& colours, std::size_t limit)
      : colours_(colours), limit_(limit) {
    indices_.fill(Free);
  }

  std::optional<std::uint16_t> indexOf(const std::uint8_t* pixel) {
    const std::uint32_t word = wordAt(pixel);
    for (std::size_t slot = (word * 0x9E3779B1u) >> (32 - SlotBits);; slot = (slot + 1) % Slots) {
      if (indices_[slot] == Free) {
        if (colours_.size() >= limit_) return std::nullopt;
        words_[slot] = word;
        indices_[slot] = static_cast<std::uint16_t>(colours_.size());
        colours_.push_back({pixel[1], pixel[2], pixel[3]});
        return indices_[slot];
      }
      if (words_[slot] == word) return indices_[slot];
    }
  }

 private:
  static constexpr int SlotBits = 12;
  static constexpr std::size_t Slots = std::size_t{1} << SlotBits;
  static constexpr std::uint16_t Free = 0xFFFF;

  std::vector<std::array<std::uint8_t, 3>>& colours_;
  std::size_t limit_;
  std::array<std::uint32_t, Slots> words_{};
  std::array<std::uint16_t, Slots> indices_{};
};

// Starts the frame: the transparent colour, when there is one, takes index 0.
void beginFrame(bool transparent, const Area& area, IndexedFrame& frame) {
  frame.Place = area;
  frame.Colours.clear();
  frame.Indices.assign(static_cast<std::size_t>(area.Width) * area.Height, 0);
  frame.Transparent.reset();
  frame.Quantised = false;
  if (transparent) {
    frame.Transparent = 0;
    frame.Colours.push_back({0, 0, 0});
  }
}

// Calls `visit(pixel, index slot)` for every pixel of the area that differs from `shown` and
// gives the others the transparent index 0; stops when `visit` returns false.
template <typename Visit>
bool forEachDrawnPixel(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                       IndexedFrame& frame, Visit visit) {
  std::uint8_t* index = frame.Indices.data();
  for (int y = 0; y < area.Height; ++y) {
    const std::uint8_t* pixel = rowOf(picture.Pixels, picture.Width, area, y);
    const std::uint8_t* before = shown ? rowOf(shown, picture.Width, area, y) : nullptr;
    for (int x = 0; x < area.Width; ++x, pixel += 4, ++index) {
      if (before != nullptr && wordAt(pixel) == wordAt(before + 4 * x)) {
        *index = 0;
      } else if (!visit(pixel, *index)) {
        return false;
      }
    }
  }
  return true;
}

bool indexExactly(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                  IndexedFrame& frame) {
  beginFrame(shown != nullptr, area, frame);
  ColourTable table(frame.Colours, TableSize);
  std::uint32_t lastWord = 0;
  std::optional<std::uint16_t> lastIndex;
  return forEachDrawnPixel(picture, shown, area, frame,
                           [&](const std::uint8_t* pixel, std::uint8_t& index) {
                             if (!lastIndex || wordAt(pixel) != lastWord) {
                               lastIndex = table.indexOf(pixel);
                               lastWord = wordAt(pixel);
                               if (!lastIndex) return false;
                             }
                             index = static_cast<std::uint8_t>(*lastIndex);
                             return true;
                           });
}

// Exact colours in parts of 255 colours beside the transparent index 0; false when the
// pixels have more colours than `partsAllowed` parts hold.
bool indexInParts(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                  int partsAllowed, std::vector<IndexedFrame>& parts) {
  constexpr std::size_t PartColours = TableSize - 1;
  std::vector<std::array<std::uint8_t, 3>> colours;
  ColourTable table(colours, PartColours * partsAllowed);
  std::vector<std::uint16_t> indices;
  IndexedFrame& first = parts.front();
  beginFrame(shown != nullptr, area, first);
  const bool fits = forEachDrawnPixel(
      picture, shown, area, first, [&](const std::uint8_t* pixel, std::uint8_t& index) {
        const std::optional<std::uint16_t> found = table.indexOf(pixel);
        indices.push_back(found.value_or(0));
        index = 1;
        return found.has_value();
      });
  if (!fits) return false;
  const std::size_t partCount = (colours.size() + PartColours - 1) / PartColours;
  const std::vector<std::uint8_t> drawn = first.Indices;  // 1 where a pixel is drawn
  parts.resize(partCount);
  for (std::size_t part = 0; part < partCount; ++part) {
    IndexedFrame& frame = parts[part];
    beginFrame(true, area, frame);
    const auto from = colours.begin() + static_cast<std::ptrdiff_t>(part * PartColours);
    frame.Colours.insert(frame.Colours.end(), from,
                         from + static_cast<std::ptrdiff_t>(
                                    std::min(PartColours, colours.size() - part * PartColours)));
    std::size_t next = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
      if (drawn[i] == 0) continue;
      const std::uint16_t colour = indices[next++];
      frame.Indices[i] =
          colour / PartColours == part ? static_cast<std::uint8_t>(1 + colour % PartColours) : 0;
    }
  }
  return true;
}

bool indexQuantised(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                    IndexedFrame& frame) {
  beginFrame(shown != nullptr, area, frame);
  std::vector<Rgb> drawn;
  forEachDrawnPixel(picture, shown, area, frame, [&](const std::uint8_t* pixel, std::uint8_t&) {
    drawn.push_back({pixel[1], pixel[2], pixel[3]});
    return true;
  });
  const int offset = static_cast<int>(frame.Colours.size());
  const ColourTableOfPixels table = medianCut(drawn, TableSize - offset);
  frame.Colours.insert(frame.Colours.end(), table.Colours.begin(), table.Colours.end());
  std::size_t next = 0;
  forEachDrawnPixel(picture, shown, area, frame, [&](const std::uint8_t*, std::uint8_t& index) {
    index = static_cast<std::uint8_t>(table.Indices[next++] + offset);
    return true;
  });
  frame.Quantised = true;
  return true;
}

}  // namespace

// Unchanged pixels are transparent while at most 255 colours are drawn; failing that, drawing
// every pixel of the rectangle may still fit 256 exact colours, and parts beat quantising.
bool indexFrame(const PictureView& picture, const std::uint8_t* shown, const Area& area,
                int partsAllowed, Quantising quantising, std::vector<IndexedFrame>& parts) {
  parts.resize(1);
  if (indexExactly(picture, shown, area, parts.front())) return true;
  if (shown != nullptr && indexExactly(picture, nullptr, area, parts.front())) return true;
  if (partsAllowed > 1 &&
      indexInParts(picture, shown, area, std::min(partsAllowed, MostParts), parts)) {
    return true;
  }
  parts.resize(1);
  return quantising == Quantising::Allowed && indexQuantised(picture, shown, area, parts.front());
}

}  // namespace rvtools::picture
