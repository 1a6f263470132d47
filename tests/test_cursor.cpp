// SPDX-License-Identifier: MIT
// Cursor movement, scrolling, clearing and the cursor display: whole screens, both scroll methods
// giving the same pixels, and the guards against a cursor or a record beyond the window.
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "common.hpp"

namespace rvtools::testing {
namespace {

class CursorTest : public RuntimeTest {
 protected:
  // A window of columns x lines cells of the bold font, every cell blank in colour C0.
  void initBlankWindow(UInt8 window, Int depth, Int columns, Int lines) {
    initTextWindow(window, depth, columns, lines);
    t_ClearEndOfWindow(window);
  }
};

void write(UInt8 window, Int column, Int line, std::string_view text, UInt8 color = 0xC0) {
  for (char c : text) t_PrintSymbol(window, static_cast<UInt8>(c), color, column++, line);
}

// A screen as screenText renders it: each line padded with blanks to `width`.
std::string screen(std::size_t width, std::initializer_list<std::string_view> lines) {
  std::string text;
  for (std::string_view line : lines) {
    text.append(line).append(width - line.size(), ' ') += '\n';
  }
  return text;
}

// The window's picture, without the slack at the end of its block.
std::vector<UInt8> picture(UInt8 window) {
  const t_Window& record = Windows[window];
  std::vector<UInt8> bytes = pictureBytes(window);
  bytes.resize(static_cast<std::size_t>(record.Width * record.Height * record.BitDepth / 8));
  return bytes;
}

TEST_F(CursorTest, MovesWrapAtTheEdgesAndScrollTheAreaUnlessLocked) {
  initBlankWindow(0, 24, 10, 4);
  Windows[0].TextFirstLine = 2;  // line 1 lies outside the area and never moves
  write(0, 1, 1, "top");
  write(0, 1, 2, "a");
  write(0, 1, 3, "b");
  write(0, 10, 3, "!");
  t_CursorHome(0);
  t_CursorLeft(0);
  EXPECT_EQ(cursorOf(0), Position(10, 2));
  EXPECT_EQ(screenText(0), screen(10, {"top", "", "a", "b        !"}));
  t_Vtab(0, 3);
  t_Htab(0, 10);
  t_CursorRight(0);
  EXPECT_EQ(cursorOf(0), Position(1, 4));
  t_Htab(0, 10);
  t_CursorRight(0);
  EXPECT_EQ(cursorOf(0), Position(1, 4));
  EXPECT_EQ(screenText(0), screen(10, {"top", "a", "b        !", ""}));

  Windows[0].ScrollLock = true;
  t_CursorEnd(0);
  t_CursorDown(0);
  t_ScrollDown(0);
  EXPECT_EQ(cursorOf(0), Position(10, 4));
  EXPECT_EQ(screenText(0), screen(10, {"top", "a", "b        !", ""}));
  EXPECT_TRUE(logLines().empty());
}

TEST_F(CursorTest, SingleLineAndInverseAreasScrollByBlankingTheFreedLine) {
  initBlankWindow(0, 24, 3, 3);
  for (Int line = 1; line <= 3; ++line) write(0, 1, line, "xyz");
  Windows[0].TextFirstLine = Windows[0].TextLastLine = 2;
  t_ScrollUp(0);
  EXPECT_EQ(screenText(0), screen(3, {"xyz", "", "xyz"}));
  write(0, 1, 2, "xyz");
  Windows[0].TextFirstColumn = 2;
  t_ScrollDown(0);
  EXPECT_EQ(screenText(0), screen(3, {"xyz", "x", "xyz"}));
  // In inverse, the freed line is blank in inverse colours, moved cells keep theirs.
  initBlankWindow(0, 24, 4, 3);
  write(0, 1, 1, "abcd", 0x12);
  write(0, 1, 2, "efgh", 0x34);
  write(0, 1, 3, "ijkl", 0x56);
  Windows[0].TextInverse = true;
  t_ScrollUp(0);
  Windows[0].TextFirstColumn = 2;  // the cell-redrawing scroll
  t_ScrollUp(0);
  EXPECT_EQ(screenText(0), screen(4, {"ejkl", "i", ""}));
  EXPECT_EQ(screenColors(0), "34 56 56 56\n56 0C 0C 0C\n0C 0C 0C 0C\n");
  EXPECT_TRUE(Windows[0].TextInverse);
}

TEST_F(CursorTest, ClearEndOfWindowFromTheMiddle) {
  initBlankWindow(0, 24, 5, 3);
  for (Int line = 1; line <= 3; ++line) write(0, 1, line, "abcde", 0x12);
  t_Htab(0, 3);
  t_Vtab(0, 2);
  t_ClearEndOfWindow(0);
  EXPECT_EQ(cursorOf(0), Position(3, 2));
  EXPECT_EQ(screenText(0), screen(5, {"abcde", "ab", ""}));
  EXPECT_EQ(screenColors(0), "12 12 12 12 12\n12 12 C0 C0 C0\nC0 C0 C0 C0 C0\n");
}

// Window 0 scrolls its whole width by block moves; window 1 scrolls the same columns as two
// narrower areas, which redraw cell by cell. Both must show the same picture after each scroll.
TEST_F(CursorTest, BlockMovesAndRedrawingGiveTheSamePicture) {
  for (const Int depth : {1, 4, 8, 16, 24, 32}) {
    SCOPED_TRACE(depth);
    for (UInt8 window : {0, 1}) {
      initBlankWindow(window, depth, 5, 5);
      Windows[window].TextFirstLine = 2;
      for (Int line = 1; line <= 5; ++line) {
        write(window, 1, line, "Wq#" + std::to_string(line) + "j", static_cast<UInt8>(0x1F * line));
      }
    }
    const auto scrollBoth = [](void (*scroll)(UInt8)) {
      scroll(0);
      Windows[1].TextLastColumn = 4;
      scroll(1);
      Windows[1].TextFirstColumn = Windows[1].TextLastColumn = 5;
      scroll(1);
      Windows[1].TextFirstColumn = 1;
      EXPECT_EQ(screenText(1), screenText(0));
      EXPECT_EQ(screenColors(1), screenColors(0));
      EXPECT_TRUE(picture(1) == picture(0));
    };
    scrollBoth(t_ScrollUp);
    scrollBoth(t_ScrollDown);
    scrollBoth(t_ScrollDown);
    EXPECT_EQ(screenText(0), screen(5, {"Wq#1j", "", "", "Wq#3j", "Wq#4j"}));
  }
}

TEST_F(CursorTest, TabsOutOfRangeAndCursorBeyondTheLastColumn) {
  initBlankWindow(0, 24, 10, 4);
  for (Int line = 1; line <= 4; ++line) write(0, 1, line, "0123456789");
  t_Window& record = Windows[0];
  record.TextFirstColumn = 3;
  record.TextLastColumn = 8;
  record.TextFirstLine = 2;
  t_Htab(0, 0);
  t_Htab(0, 9);
  t_Vtab(0, 0);
  t_Vtab(0, 5);
  EXPECT_EQ(cursorOf(0), Position(1, 1));
  t_Htab(0, 8);  // bounded by the text memory's width, not by the area
  t_Vtab(0, 1);  // an absolute line, above the area
  EXPECT_EQ(cursorOf(0), Position(10, 1));
  t_ClearEndOfLine(0);
  t_ClearEndOfWindow(0);
  EXPECT_EQ(cursorOf(0), Position(10, 1));
  record.TextFirstColumn = 9;  // an area with no columns scrolls nothing
  t_ScrollUp(0);
  EXPECT_EQ(screenText(0), screen(10, {"0123456789", "01      89", "01      89", "01      89"}));
  EXPECT_TRUE(logLines().empty());
}

TEST_F(CursorTest, TamperedRecordNeverMovesBytesOutsideItsBlocks) {
  initBlankWindow(0, 24, 4, 3);
  write(0, 1, 2, "ab", 0x12);
  write(0, 1, 3, "cd", 0x34);
  t_Window& record = Windows[0];
  std::vector<UInt8> before = VideoMemory;
  const auto unchangedOutside = [&](Int first, Int last) {
    for (Int address = 0; address < static_cast<Int>(before.size()); ++address) {
      if ((address < first || address > last) && VideoMemory[address] != before[address]) {
        return false;
      }
    }
    return true;
  };
  record.TextLastLine = 6;  // below the text memory and the picture
  t_ScrollUp(0);
  t_ScrollDown(0);
  EXPECT_TRUE(unchangedOutside(record.TextMemoryStart, record.MemoryEnd));
  record.TextLastLine = 3;
  before = VideoMemory;
  record.MemoryEnd = record.MemoryStart + 100;  // a block too small for the picture
  t_ScrollUp(0);
  EXPECT_TRUE(unchangedOutside(record.TextMemoryStart, record.TextMemoryEnd));
}

TEST_F(CursorTest, CursorAndAreaAtTheEndsOfTheIntRangeStayInsideTheWindow) {
  constexpr Int Smallest = std::numeric_limits<Int>::min(),
                Largest = std::numeric_limits<Int>::max();
  constexpr Int Far = Int{1} << 40;
  initBlankWindow(0, 24, 4, 3);
  t_Window& record = Windows[0];
  record.TextHpos = Largest;
  t_CursorRight(0);
  EXPECT_EQ(cursorOf(0), Position(1, 2));
  record.TextHpos = Smallest;
  t_CursorLeft(0);
  EXPECT_EQ(cursorOf(0), Position(4, 1));
  record.TextCursorLevel = Largest;
  t_CursorOn(0);
  EXPECT_EQ(record.TextCursorLevel, Largest);
  record.TextCursorLevel = Smallest;
  t_CursorOff(0);
  EXPECT_EQ(record.TextCursorLevel, Smallest);
  // An area far beyond the window: clearing and scrolling go over the window's cells only and
  // refuse the first cell beyond it, once per call.
  for (Int line = 1; line <= 3; ++line) write(0, 1, line, "abcd");
  record.TextLastColumn = Far;
  record.TextLastLine = Far;
  record.TextHpos = 3;
  t_ClearEndOfWindow(0);
  EXPECT_EQ(screenText(0), screen(4, {"ab", "", ""}));
  record.TextVpos = Largest;
  t_CursorDown(0);
  EXPECT_EQ(record.TextVpos, Largest - 1);
  EXPECT_EQ(logLines(), (Lines{"t_PrintSymbol: Window #0 illegal coordinates (x = 5, y = 1).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 1, y = "
                               "1099511627776)."}));
}

TEST_F(CursorTest, CursorDisplayNestsAndUndoesItself) {
  initBlankWindow(0, 24, 3, 2);
  const std::vector<UInt8> blank = picture(0);
  t_Window& record = Windows[0];
  t_CursorOn(0);
  t_CursorOn(0);
  t_CursorOff(0);
  EXPECT_EQ(screenColors(0), "0C C0 C0\nC0 C0 C0\n");
  EXPECT_TRUE(picture(0) != blank);
  t_CursorOff(0);
  EXPECT_EQ(record.TextCursorLevel, 0);
  EXPECT_TRUE(picture(0) == blank);
  t_CursorOff(0);
  EXPECT_EQ(record.TextCursorLevel, -1);
  t_CursorOn(0);
  record.TextHpos = 4;  // beyond TextWidth: the level changes, nothing is drawn
  t_CursorOn(0);
  EXPECT_EQ(record.TextCursorLevel, 1);
  EXPECT_EQ(screenColors(0), "C0 C0 C0\nC0 C0 C0\n");
  EXPECT_TRUE(picture(0) == blank);

  t_CursorOn(8);
  t_CursorOff(1);
  t_CursorDraw(8);
  t_Cr(2);
  EXPECT_EQ(Windows[1].TextCursorLevel, 0);
  EXPECT_EQ(logLines(), (Lines{"t_CursorOn: Window is not a graphic window.",
                               "t_CursorOff: Window #1 not initialized.",
                               "t_CursorDraw: Window is not a graphic window.",
                               "t_Cr: Window #2 not initialized."}));
}

}  // namespace
}  // namespace rvtools::testing
