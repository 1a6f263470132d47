// SPDX-License-Identifier: MIT
// Low-resolution graphics in the text cells: plot modes, offsets, clipping, reading points back,
// the text areas, inverting cells, reading the screen as text, and refusals.
#include <climits>

#include "common.hpp"

namespace rvtools::testing {
namespace {

class GraphicsTest : public RuntimeTest {
 protected:
  // Window 0 with 6 x 3 cells, every cell a blank of colour byte 0x00, ink colour 13.
  void SetUp() override {
    RuntimeTest::SetUp();
    initTextWindow(0, 8, 6, 3);
    fill(' ', 0x00);
    Windows[0].TextColor = 0xD0;
    clearLog();
  }
  void fill(UInt8 code, UInt8 colours) {
    for (Int line = 1; line <= 3; ++line) {
      for (Int column = 1; column <= 6; ++column) t_PrintSymbol(0, code, colours, column, line);
    }
  }
  UInt8 codeAt(Int column, Int line) const {
    return VideoMemory[Windows[0].TextMemoryStart + (column - 1) + 6 * (line - 1)];
  }
};

const std::string BlankColours = "00 00 00 00 00 00\n00 00 00 00 00 00\n00 00 00 00 00 00\n";

// Two points a cell; off the grid, points are clipped silently.
TEST_F(GraphicsTest, ColourBlocksHoldTwoPointsACellAndClipSilently) {
  t_Plot(0, 0, 0);
  t_Plot(0, 0, 1);
  t_Plot(0, 5, 5);  // the lower point of the last cell
  Windows[0].TextColor = 0xA3;
  t_Plot(0, 5, 4);  // the upper point takes the ink, the lower one keeps colour 13
  EXPECT_EQ(screenText(0), ".     \n      \n     .\n");
  EXPECT_EQ(screenColors(0), "DD 00 00 00 00 00\n00 00 00 00 00 00\n00 00 00 00 00 AD\n");
  EXPECT_EQ((std::vector<Int>{t_Scrn(0, 0, 0), t_Scrn(0, 0, 1), t_Scrn(0, 5, 4), t_Scrn(0, 5, 5),
                              t_Scrn(0, 1, 0), t_Scrn(0, 6, 0), t_Scrn(0, 0, 6), t_Scrn(0, -1, 0)}),
            (std::vector<Int>{13, 13, 10, 13, 0, -1, -1, -1}));

  fill(' ', 0x00);
  t_Plot(0, 6, 0);  // x = TextWidth
  t_Plot(0, 0, 6);  // y = 2 x TextHeight
  t_Plot(0, -1, 0);
  t_Plot(0, 0, -1);
  t_PlotHalfSize(0, 12, 0, true);
  t_PlotHalfSize(0, 0, -1, true);
  t_LoResOffset(0, LLONG_MAX, LLONG_MIN);  // sums that leave the Int range are off the grid
  t_Plot(0, 1, -1);
  t_PlotString(0, LLONG_MAX, 0, "**");
  Windows[0].LoResMode = 2;
  t_Plot(0, LLONG_MAX / 2 + 1, 0);
  Windows[0].LoResMode = 3;
  t_Plot(0, 1, -1);
  Windows[0].LoResMode = 0;
  EXPECT_EQ(t_Scrn(0, 1, -1), -1);
  EXPECT_EQ(screenColors(0), BlankColours);
  EXPECT_EQ(screenText(0), "      \n      \n      \n");
  EXPECT_TRUE(logLines().empty());
}

TEST_F(GraphicsTest, WideAndLargeModesAndOffsets) {
  Windows[0].LoResMode = 2;
  t_Plot(0, 1, 1);  // grid points 2..3 x 2..3: cell line 2, columns 3 and 4
  EXPECT_EQ(t_Scrn(0, 1, 1), 13);
  Windows[0].LoResMode = 1;
  Windows[0].TextColor = 0xB0;
  t_Plot(0, 2, 5);  // grid points 4 and 5 of row 5: lower points of cells 5 and 6 of line 3
  EXPECT_EQ(t_Scrn(0, 2, 5), 11);
  Windows[0].LoResMode = 0;
  t_LoResOffset(0, 1, 2);
  t_Plot(0, 0, 0);  // grid point (1, 2): upper point of cell 2 of line 2
  EXPECT_EQ(t_Scrn(0, 0, 0), 11);
  EXPECT_EQ(screenColors(0), "00 00 00 00 00 00\n00 B0 DD DD 00 00\n00 00 00 00 0B 0B\n");
  EXPECT_EQ(screenText(0), "      \n ...  \n    ..\n");
  // A pattern's points count scalars and skip blanks.
  fill(' ', 0x00);
  t_LoResOffset(0, 0, 0);
  Windows[0].TextColor = 0xD0;
  t_PlotString(0, 1, 0, "\xC3\xA9 *\t!");  // é, blank, *, tab, !
  t_PlotString(0, 0, 2, "");
  EXPECT_EQ(screenColors(0), "00 D0 00 D0 00 D0\n00 00 00 00 00 00\n00 00 00 00 00 00\n");
}

TEST_F(GraphicsTest, QuarterBlocksBuildAndClearACellAndRecolourOtherSymbols) {
  Windows[0].LoResMode = 3;
  std::vector<int> codes;
  for (const bool set : {true, false}) {
    for (const auto& [x, y] : std::vector<std::pair<Int, Int>>{{0, 0}, {1, 0}, {0, 1}, {1, 1}}) {
      set ? t_Plot(0, x, y) : t_PlotHalfSize(0, x, y, false);
      codes.push_back(codeAt(1, 1));
    }
  }
  EXPECT_EQ(codes, (std::vector<int>{7, 3, 1, 0, 8, 12, 14, 32}));
  const std::string plotted = "t_PlotHalfSize: PixelByte = ";
  EXPECT_EQ(logLines(), (Lines{plotted + "20, x = 0, y = 0, Plot position 0",
                               plotted + "07, x = 1, y = 0, Plot position 1",
                               plotted + "03, x = 0, y = 1, Plot position 2",
                               plotted + "01, x = 1, y = 1, Plot position 3",
                               plotted + "00, x = 0, y = 0, Plot position 0",
                               plotted + "08, x = 1, y = 0, Plot position 1",
                               plotted + "0C, x = 0, y = 1, Plot position 2",
                               plotted + "0E, x = 1, y = 1, Plot position 3"}));
  clearLog();
  EXPECT_EQ(t_Scrn(0, 0, 0), -1);  // quarter blocks cannot be read back
  EXPECT_TRUE(logLines().empty());
  // Plots keep symbols other than quarter blocks, but recolour their cells.
  t_PrintSymbol(0, 'A', 0x12, 1, 1);
  t_PrintSymbol(0, 0, 0x12, 2, 1);   // all four quarters: setting changes nothing
  t_PrintSymbol(0, 15, 0x12, 3, 1);  // no quarter block: clearing changes nothing
  t_PrintSymbol(0, 'B', 0x12, 4, 1);
  Windows[0].TextColor = 0xC5;
  t_PlotHalfSize(0, 1, 1, true);
  t_PlotHalfSize(0, 2, 0, true);
  t_PlotHalfSize(0, 4, 1, false);
  t_PlotHalfSize(0, 7, 0, false);
  t_PlotHalfSize(0, 8, 0, false);  // a blank stays blank
  EXPECT_EQ(screenText(0), "A..B  \n      \n      \n");
  EXPECT_EQ(Position(codeAt(2, 1), codeAt(3, 1)), Position(0, 15));
  EXPECT_EQ(screenColors(0), "C5 C5 C5 C5 C5 00\n00 00 00 00 00 00\n00 00 00 00 00 00\n");
  EXPECT_EQ(logLines(), (Lines{plotted + "41, x = 1, y = 1, Plot position 3",
                               plotted + "00, x = 2, y = 0, Plot position 0",
                               plotted + "0F, x = 4, y = 1, Plot position 2",
                               plotted + "42, x = 7, y = 0, Plot position 1",
                               plotted + "20, x = 8, y = 0, Plot position 0"}));
}

TEST_F(GraphicsTest, GraphicSetsTheAreaAndBlanksEveryCell) {
  initTextWindow(1, 1, 8, 24);
  t_PrintSymbol(1, 'Z', 0xF0, 8, 24);
  Windows[1].TextHpos = 3;
  Windows[1].TextVpos = 7;
  t_Graphic(1, false);
  const t_Window& record = Windows[1];
  EXPECT_EQ((std::vector<Int>{record.TextFirstColumn, record.TextLastColumn, record.TextFirstLine,
                              record.TextLastLine, record.TextHpos, record.TextVpos}),
            (std::vector<Int>{1, 8, 20, 24, 3, 7}));
  EXPECT_EQ(t_GetScreen(1, ""), std::string(8 * 24, '\x03'));
  EXPECT_EQ(screenColors(1).find_first_not_of("0 \n"), std::string::npos);  // black on black
  t_Graphic(1, true);
  EXPECT_EQ(Position(record.TextFirstLine, record.TextLastLine), Position(1, 24));
  EXPECT_TRUE(logLines().empty());
}

TEST_F(GraphicsTest, InvertRectRedrawsCellsInverseWithinTheScreenOnly) {
  fill('x', 0x12);
  t_InvertRect(0, 3, 1, 2, 1);  // first column after the last
  t_InvertRect(0, 0, 1, 2, 1);
  t_InvertRect(0, 1, 1, 2, 4);  // below the last line
  t_InvertRect(0, 1, 2, 7, 2);
  EXPECT_EQ(screenColors(0), "12 12 12 12 12 12\n12 12 12 12 12 12\n12 12 12 12 12 12\n");
  Windows[0].TextInverse = true;
  t_InvertRect(0, 2, 2, 3, 3);
  EXPECT_TRUE(Windows[0].TextInverse);
  Windows[0].TextInverse = false;
  t_InvertRect(0, 6, 1, 6, 1);
  EXPECT_FALSE(Windows[0].TextInverse);
  EXPECT_EQ(screenColors(0), "12 12 12 12 12 21\n12 21 21 12 12 12\n12 21 21 12 12 12\n");
  EXPECT_EQ(screenText(0), "xxxxxx\nxxxxxx\nxxxxxx\n");
  EXPECT_TRUE(logLines().empty());
}

// t_GetScreen trims blanks before every carriage return. As Unicode, code 13, a quarter block,
// is no line end, and code 156 is the rule of t_TextLine.
TEST_F(GraphicsTest, ScreenTextAsCodesAndAsUnicodeShowsWhatTheFontsDraw) {
  t_PrintSymbol(0, 'A', 0xF0, 1, 1);
  t_PrintSymbol(0, 'B', 0xF0, 2, 1);
  t_PrintSymbol(0, 0xE9, 0xF0, 2, 3);
  EXPECT_EQ((Lines{t_GetScreen(0, "\r"), t_GetScreen(0, ""), t_GetScreen(0, "\n"),
                   t_GetScreen(0, "  \r\n")}),
            (Lines{"AB\r\r \xC3\xA9\r", "AB           \xC3\xA9    ",
                   "AB    \n      \n \xC3\xA9    \n", "AB\r\n\r\n \xC3\xA9\r\n"}));

  t_PrintSymbol(0, 13, 0xF0, 2, 1);
  t_PrintSymbol(0, 3, 0xF0, 3, 1);
  t_PrintSymbol(0, 156, 0xF0, 1, 2);
  t_PrintSymbol(0, 0xA4, 0xF0, 3, 3);
  EXPECT_EQ(unicodeScreenText(0), "A▖▀\n─\n é€\n");
  EXPECT_EQ(unicodeOfFontCodes("\x0D\xC2\x9C\xC2\xA4 \xE2\x82\xAC"), "▖─€ €");
  EXPECT_EQ(unicodeScreenText(5), "");
  EXPECT_EQ(logLines(), (Lines{"t_GetScreen: Window #5 not initialized."}));
}

TEST_F(GraphicsTest, RefusalsNameTheOperation) {
  t_InitWindow(3, 8, false, 64, 64, 0, 0, EmptyFont(), true);  // a window without text memory
  clearLog();
  t_FullArea(3);
  t_MixedArea(3);
  t_LoResOffset(3, 5, -7);
  EXPECT_EQ(Position(Windows[3].LoResOffsetX, Windows[3].LoResOffsetY), Position(5, -7));
  t_Plot(3, 0, 0);
  t_Graphic(3, true);
  t_PlotHalfSize(3, 0, 0, true);
  EXPECT_EQ(t_Scrn(3, 0, 0), -1);
  t_InvertRect(3, 1, 1, 1, 1);
  EXPECT_EQ(t_GetScreen(3, "\r"), "");
  t_LoResOffset(2, 1, 1);
  t_LoResOffset(8, 1, 1);
  t_MixedArea(2);
  t_Plot(9, 0, 0);
  t_PlotString(8, 0, 0, "* *");
  Windows[0].LoResMode = 4;
  t_Plot(0, 0, 0);
  EXPECT_EQ(t_Scrn(0, 0, 0), -1);
  const std::string notGraphic = "Window is not a graphic window.";
  EXPECT_EQ(
      logLines(),
      (Lines{"t_Plot: Window #3 not initialized.", "t_Graphic: Window #3 not initialized.",
             "t_PlotHalfSize: Window #3 not initialized.", "t_Scrn: Window #3 not initialized.",
             "t_InvertRect: Window #3 not initialized.", "t_GetScreen: Window #3 not initialized.",
             "t_CursorOff: Window #2 not initialized.", "t_CursorOff: " + notGraphic,
             "t_MixedArea: Window #2 not initialized.", "t_Plot: " + notGraphic,
             "t_Plot: " + notGraphic, "t_Plot: " + notGraphic, "t_Plot: Illegal graphic mode."}));
  EXPECT_EQ(screenColors(0), BlankColours);
}

}  // namespace
}  // namespace rvtools::testing
