// SPDX-License-Identifier: MIT
// Internal to the terminal host: a screen of terminal cells and the bytes that show it. The
// renderer remembers what the terminal shows and writes only the cells that differ, with
// cursor moves and colour changes kept to what is needed, inside synchronized-update brackets
// (DEC mode 2026), so that a terminal never shows half a frame.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rvtools::terminal {

// A colour as the terminal shows it: 0xRRGGBB, or the terminal's own default colour.
using CellColour = std::uint32_t;
inline constexpr CellColour DefaultColour = 0xFF000000;

constexpr CellColour rgbColour(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return (CellColour{red} << 16) | (CellColour{green} << 8) | blue;
}

struct Cell {
  char32_t Character = U' ';
  CellColour Foreground = DefaultColour;
  CellColour Background = DefaultColour;
  friend bool operator==(const Cell&, const Cell&) = default;
};

// Columns x lines cells, positions from 0; blank cells in the default colours at first.
class CellGrid {
 public:
  CellGrid() = default;
  CellGrid(int columns, int lines);
  int columns() const { return columns_; }
  int lines() const { return lines_; }
  Cell& at(int column, int line) { return cells_[index(column, line)]; }
  const Cell& at(int column, int line) const { return cells_[index(column, line)]; }
  // Writes `text` from (column, line) on, cut at the line's end.
  void write(int column, int line, std::u32string_view text, CellColour foreground,
             CellColour background);

 private:
  std::size_t index(int column, int line) const {
    return static_cast<std::size_t>(line) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }
  int columns_ = 0;
  int lines_ = 0;
  std::vector<Cell> cells_;
};

// How the terminal takes colours: as 24-bit values, or as entries of the 256-colour table.
enum class ColourDepth { TrueColour, Indexed256 };

// The entry of the 256-colour table nearest to `colour`: one of the 6 x 6 x 6 cube (16..231)
// or the grey ramp (232..255); the first sixteen differ from terminal to terminal.
int nearestIndexedColour(CellColour colour);

class CellRenderer {
 public:
  explicit CellRenderer(ColourDepth depth) : depth_(depth) {}

  // The bytes that turn what the terminal shows into `next`: the whole screen the first time,
  // after invalidate() and when the size changed, else only the cells that differ. Nothing
  // when nothing differs.
  std::string render(const CellGrid& next);
  // The terminal's screen is no longer known (it was resized or written by others).
  void invalidate() { valid_ = false; }

 private:
  // A colour as it is sent: the 24-bit value, DefaultColour, or the table entry.
  CellColour sentColour(CellColour colour) const;
  void moveTo(std::string& out, int column, int line);
  void setColours(std::string& out, const Cell& cell);

  ColourDepth depth_;
  CellGrid shown_;
  bool valid_ = false;
  int cursorColumn_ = -1;  // -1: unknown
  int cursorLine_ = -1;
  CellColour foreground_ = DefaultColour;  // as last sent
  CellColour background_ = DefaultColour;
};

}  // namespace rvtools::terminal
