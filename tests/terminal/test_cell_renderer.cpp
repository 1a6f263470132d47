// Terminal cells as bytes: a whole frame of a known screen, the bytes of a one-cell change,
// nothing for an unchanged screen, the 256-colour table; and a window's text memory and
// picture as cells.
#include <gtest/gtest.h>

#include "terminal/cell_renderer.hpp"
#include "terminal/window_cells.hpp"

namespace rvtools::terminal {
namespace {

constexpr std::string_view Begin = "\x1B[?2026h";
constexpr std::string_view End = "\x1B[?2026l";
constexpr CellColour Red = rgbColour(255, 0, 0), Black = rgbColour(0, 0, 0);
constexpr CellColour Green = rgbColour(0, 255, 0), Blue = rgbColour(0, 0, 255);

// Three columns, two lines: "A▀ " over " BC", the top right and bottom left cells blank in the
// terminal's colours.
CellGrid knownScreen() {
  CellGrid grid(3, 2);
  grid.at(0, 0) = {U'A', Red, Black};
  grid.at(1, 0) = {U'▀', Green, Blue};
  grid.write(1, 1, U"BC", Red, Black);
  return grid;
}

std::string framed(std::string_view bytes) {
  return std::string(Begin) + std::string(bytes) + std::string(End);
}

TEST(CellRenderer, WholeFrameThenOneChangedCellThenNothing) {
  CellRenderer renderer(ColourDepth::TrueColour);
  CellGrid screen = knownScreen();
  EXPECT_EQ(renderer.render(screen), framed("\x1B[0m\x1B[2J"
                                            "\x1B[1H\x1B[38;2;255;0;0;48;2;0;0;0mA"
                                            "\x1B[38;2;0;255;0;48;2;0;0;255m\xE2\x96\x80"
                                            "\x1B[2;2H\x1B[38;2;255;0;0;48;2;0;0;0mBC"));

  screen.at(2, 1).Character = U'D';
  EXPECT_EQ(renderer.render(screen), framed("\x1B[2;3HD"));
  screen.at(0, 0).Background = Blue;
  EXPECT_EQ(renderer.render(screen), framed("\x1B[1H\x1B[48;2;0;0;255mA"));
  EXPECT_EQ(renderer.render(screen), "");

  // A new size, or a screen that others wrote, is drawn whole again.
  renderer.invalidate();
  EXPECT_EQ(renderer.render(screen).substr(Begin.size(), 8), "\x1B[0m\x1B[2J");
  EXPECT_EQ(renderer.render(CellGrid(3, 3)), framed("\x1B[0m\x1B[2J"));
}

TEST(CellRenderer, TheNearestOfTheTableWithout24BitColour) {
  EXPECT_EQ(nearestIndexedColour(Red), 196);
  EXPECT_EQ(nearestIndexedColour(Black), 16);
  EXPECT_EQ(nearestIndexedColour(rgbColour(128, 128, 128)), 244);
  EXPECT_EQ(nearestIndexedColour(rgbColour(0, 128, 0)), 28);
  CellRenderer renderer(ColourDepth::Indexed256);
  CellGrid screen(1, 1);
  screen.at(0, 0) = {U'x', Red, rgbColour(1, 1, 1)};
  EXPECT_EQ(renderer.render(screen), framed("\x1B[0m\x1B[2J\x1B[1H\x1B[38;5;196;48;5;16mx"));
  // Another colour of the same entry changes nothing that the terminal shows.
  screen.at(0, 0).Foreground = rgbColour(250, 5, 5);
  screen.at(0, 0).Character = U'y';
  EXPECT_EQ(renderer.render(screen), framed("\x1B[1Hy"));
}

TEST(WindowCells, TextMemoryAsCharactersInTheirPaletteColours) {
  // Line one: the upper half block of low-resolution graphics (colour 4 above colour 12) and
  // an "A"; line two: the quarter block of code 9 and the line of code 156.
  const UInt8 codes[4] = {3, 'A', 9, 156};
  const UInt8 colours[4] = {0x4C, 0xF0, 0xC0, 0x10};
  CellGrid grid(3, 3);
  drawTextCells(codes, colours, 2, 2, 2, grid);
  EXPECT_EQ(grid.at(0, 0), (Cell{U'▀', paletteCellColour(4), paletteCellColour(12)}));
  EXPECT_EQ(grid.at(1, 0), (Cell{U'A', paletteCellColour(15), paletteCellColour(0)}));
  EXPECT_EQ(grid.at(0, 1), (Cell{U'▞', paletteCellColour(12), paletteCellColour(0)}));
  EXPECT_EQ(grid.at(1, 1).Character, U'─');
  EXPECT_EQ(grid.at(2, 2), Cell{});
}

TEST(WindowCells, PicturesShrinkByWholeFactorsIntoHalfBlocks) {
  EXPECT_EQ(pixelScale(1280, 800, 80, 25), 16);
  EXPECT_EQ(pixelScale(1280, 800, 80, 24), 17);
  EXPECT_EQ(pixelScale(40, 20, 80, 25), 1);

  // Four by three pixels at scale 2: the left column's top cell is the mean of a white and
  // a black pair, its lower half the last row alone.
  std::vector<UInt8> pixels;
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 4; ++x) {
      const UInt8 value = (x == 0 && y == 0) || y == 2 ? 255 : 0;
      pixels.insert(pixels.end(), {255, value, value, value});
    }
  }
  CellGrid grid(5, 5);
  EXPECT_EQ(drawHalfBlockPixels(pixels.data(), 4, 3, 2, grid, 5), std::make_pair(2, 1));
  EXPECT_EQ(grid.at(0, 0), (Cell{U'▀', rgbColour(63, 63, 63), rgbColour(255, 255, 255)}));
  EXPECT_EQ(grid.at(1, 0), (Cell{U'▀', Black, rgbColour(255, 255, 255)}));
  EXPECT_EQ(grid.at(2, 0), Cell{});
}

}  // namespace
}  // namespace rvtools::terminal
