// SPDX-License-Identifier: MIT
// Terminal cells to bytes: cursor positioning (CUP), colours (SGR 38/48 with 24-bit values or
// table entries, 39/49 for the defaults) and UTF-8 characters, each cell written only when it
// differs from what the terminal shows. A full frame clears the screen first and leaves out the
// blank cells that the clearing made.
#include "terminal/cell_renderer.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "rvtools/runtime.hpp"

namespace rvtools::terminal {
namespace {

constexpr std::string_view BeginUpdate = "\x1B[?2026h";
constexpr std::string_view EndUpdate = "\x1B[?2026l";
constexpr std::string_view ClearScreen = "\x1B[0m\x1B[2J";

// The levels of the 256-colour table's cube, and its grey ramp 8, 18, ..., 238.
constexpr std::array<int, 6> CubeLevels = {0, 95, 135, 175, 215, 255};
constexpr int FirstCubeEntry = 16;
constexpr int FirstGreyEntry = 232;

int red(CellColour colour) {
  return static_cast<int>((colour >> 16) & 0xFF);
}
int green(CellColour colour) {
  return static_cast<int>((colour >> 8) & 0xFF);
}
int blue(CellColour colour) {
  return static_cast<int>(colour & 0xFF);
}

int nearestCubeLevel(int value) {
  int best = 0;
  for (int level = 1; level < 6; ++level) {
    if (std::abs(CubeLevels[level] - value) < std::abs(CubeLevels[best] - value)) best = level;
  }
  return best;
}

int distance(int r1, int g1, int b1, int r2, int g2, int b2) {
  return (r1 - r2) * (r1 - r2) + (g1 - g2) * (g1 - g2) + (b1 - b2) * (b1 - b2);
}

void appendNumber(std::string& out, int number) {
  out += std::to_string(number);
}

// "38;2;r;g;b", "38;5;n" or "39" for the foreground; 48 and 49 for the background.
void appendColour(std::string& out, CellColour sent, ColourDepth depth, bool foreground) {
  if (sent == DefaultColour) {
    out += foreground ? "39" : "49";
    return;
  }
  out += foreground ? "38;" : "48;";
  if (depth == ColourDepth::Indexed256) {
    out += "5;";
    appendNumber(out, static_cast<int>(sent));
    return;
  }
  out += "2;";
  appendNumber(out, red(sent));
  out += ';';
  appendNumber(out, green(sent));
  out += ';';
  appendNumber(out, blue(sent));
}

}  // namespace

CellGrid::CellGrid(int columns, int lines)
    : columns_(std::max(columns, 0)),
      lines_(std::max(lines, 0)),
      cells_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(lines_)) {}

void CellGrid::write(int column, int line, std::u32string_view text, CellColour foreground,
                     CellColour background) {
  if (line < 0 || line >= lines_) return;
  for (const char32_t character : text) {
    if (column >= columns_) return;
    if (column >= 0) at(column, line) = {character, foreground, background};
    ++column;
  }
}

int nearestIndexedColour(CellColour colour) {
  const int r = red(colour), g = green(colour), b = blue(colour);
  const int cubeRed = nearestCubeLevel(r), cubeGreen = nearestCubeLevel(g);
  const int cubeBlue = nearestCubeLevel(b);
  const int cubeDistance =
      distance(r, g, b, CubeLevels[cubeRed], CubeLevels[cubeGreen], CubeLevels[cubeBlue]);
  const int grey = std::clamp(((r + g + b) / 3 - 3) / 10, 0, 23);
  const int greyValue = 8 + 10 * grey;
  const int greyDistance = distance(r, g, b, greyValue, greyValue, greyValue);
  if (greyDistance < cubeDistance) return FirstGreyEntry + grey;
  return FirstCubeEntry + 36 * cubeRed + 6 * cubeGreen + cubeBlue;
}

CellColour CellRenderer::sentColour(CellColour colour) const {
  if (colour == DefaultColour || depth_ == ColourDepth::TrueColour) return colour;
  return static_cast<CellColour>(nearestIndexedColour(colour));
}

void CellRenderer::moveTo(std::string& out, int column, int line) {
  if (column == cursorColumn_ && line == cursorLine_) return;
  out += "\x1B[";
  appendNumber(out, line + 1);
  if (column > 0) {
    out += ';';
    appendNumber(out, column + 1);
  }
  out += 'H';
  cursorColumn_ = column;
  cursorLine_ = line;
}

void CellRenderer::setColours(std::string& out, const Cell& cell) {
  const CellColour foreground = sentColour(cell.Foreground);
  const CellColour background = sentColour(cell.Background);
  if (foreground == foreground_ && background == background_) return;
  out += "\x1B[";
  if (foreground != foreground_) appendColour(out, foreground, depth_, true);
  if (background != background_) {
    if (foreground != foreground_) out += ';';
    appendColour(out, background, depth_, false);
  }
  out += 'm';
  foreground_ = foreground;
  background_ = background;
}

std::string CellRenderer::render(const CellGrid& next) {
  std::string out;
  const bool full = !valid_ || shown_.columns() != next.columns() || shown_.lines() != next.lines();
  if (full) {
    out += ClearScreen;
    foreground_ = background_ = DefaultColour;
    cursorColumn_ = cursorLine_ = -1;
  }
  for (int line = 0; line < next.lines(); ++line) {
    for (int column = 0; column < next.columns(); ++column) {
      const Cell& cell = next.at(column, line);
      if (full ? cell == Cell{} : cell == shown_.at(column, line)) continue;
      moveTo(out, column, line);
      setColours(out, cell);
      out += utf8Of(cell.Character);
      // After the last column the cursor waits at the edge; where it is then is not certain.
      cursorColumn_ = column + 1 < next.columns() ? column + 1 : -1;
    }
  }
  shown_ = next;
  valid_ = true;
  if (out.empty()) return out;
  return std::string(BeginUpdate) + out + std::string(EndUpdate);
}

}  // namespace rvtools::terminal
