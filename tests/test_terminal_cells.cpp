// SPDX-License-Identifier: MIT
// The terminal host's drawing of a text window on the runtime: cells that hold pixel drawings as
// quadrant blocks from the picture, which is composed only while a shown cell is marked and only
// when the picture changed; the other cells from their text.
#include "common.hpp"
#include "rvtools/rvtools.hpp"
#include "terminal/window_cells.hpp"

namespace rvtools::testing {
namespace {

using terminal::Cell;

class TerminalCellsTest : public RuntimeTest {};

TEST_F(TerminalCellsTest, MarkedCellsAsBlocksComposedOnlyWhenThePictureChanged) {
  initTextWindow(0, 24, 4, 2);  // cells of 16 x 32 pixels
  t_WindowFront(0);             // only a visible window has a picture to compose
  t_Print(0, "\fAB");
  const WindowView view(0);
  terminal::CellGrid grid(4, 2);
  terminal::ComposedPicture picture;
  const auto draw = [&] { return terminal::drawWindow(view, grid, 2, picture); };
  EXPECT_EQ(draw().Columns, 4);
  EXPECT_EQ(picture.Compositions, 0);
  EXPECT_EQ(grid.at(0, 0).Character, U'A');

  // Pixel row 40 is row 8 of line 2, in its upper half; pixel (0, 63) the lower left of a cell.
  const terminal::CellColour yellow = terminal::paletteCellColour(13);
  const terminal::CellColour paper = grid.at(2, 1).Background;
  t_HColor(0, 13);
  t_HLine(0, 16, 40, 63, 40);
  t_HPlot(0, 0, 63);
  draw();
  EXPECT_EQ(picture.Compositions, 1);
  EXPECT_EQ(grid.at(0, 1), (Cell{U'▖', yellow, paper}));
  for (int column = 1; column < 4; ++column) {
    EXPECT_EQ(grid.at(column, 1), (Cell{U'▀', yellow, paper})) << column;
  }
  EXPECT_EQ(grid.at(1, 0).Character, U'B');
  draw();
  EXPECT_EQ(picture.Compositions, 1);

  // A glyph printed into a marked cell shows as text again.
  t_Vtab(0, 2);
  t_Htab(0, 2);
  t_Print(0, "C");
  draw();
  EXPECT_EQ(picture.Compositions, 2);
  EXPECT_EQ(grid.at(1, 1).Character, U'C');
  EXPECT_EQ(grid.at(2, 1).Character, U'▀');
  // Once no cell is marked, a changed picture is not composed.
  t_Print(0, "\f");
  draw();
  EXPECT_EQ(picture.Compositions, 2);
  EXPECT_EQ(grid.at(2, 1).Character, U' ');
}

}  // namespace
}  // namespace rvtools::testing
