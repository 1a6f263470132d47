// SPDX-License-Identifier: MIT
// The line input editor, driven through the real key queue: the keys are queued before the
// form starts and the form takes them one by one. Screens show the line as it was left.
#include <limits>

#include "common.hpp"

namespace rvtools::testing {
namespace {

// The codes that the key handler delivers for the editing keys.
const std::string Return = "\r", Escape = "\x1B", Backspace = "\x7F", ForwardDelete = "\x07";
const std::string Home = "\x02", End = "\x05", Left = "\b", Right = "\x15";
const std::string WordRight = "\x04", WordLeft = "\x13", Copy = "\x0C", ClearLine = "\x1A";
const std::string CodeEntry = "\x1E";

class LineInputTest : public RuntimeTest {
 protected:
  void SetUp() override {
    RuntimeTest::SetUp();
    initTextWindow(0, 8, 16, 3);
  }
  // Queues each character as a key press of its own.
  static void type(const std::string& keys) {
    for (char c : keys) viewKeyDown(0, 18, std::string(1, c), 0);
  }
};

TEST_F(LineInputTest, DefaultLineTakesDigitsUpToTheMaximum) {
  type("12" + Return);
  EXPECT_EQ(t_InputForm(0, "Zeit: ", "5000", false, 2, 5), "50001");
  EXPECT_EQ(screenText(0), "Zeit: 50001.....\n................\n................\n");
  EXPECT_EQ(Windows[0].TextVpos, 2);
  EXPECT_TRUE(Windows[0].InputFinished);

  // The line also ends before the window's last column.
  type("abcdefgh" + Return);
  EXPECT_EQ(t_InputForm(0, "0123456789012", "", false, 4, 40), "ab");
}

TEST_F(LineInputTest, NumberModesKeepTheShapeOfANumber) {
  // Integers take one leading minus and no letters.
  type("1-a" + Home + "--x" + End + "2" + Return);
  EXPECT_EQ(t_InputForm(0, "", "", false, 2, 8), "-12");
  // In reals, a digit in front of the minus and a digit between the e and its minus are refused.
  type("e-1,.5e.e--3" + Home + "7" + End + Left + Left + "4" + Return);
  EXPECT_EQ(t_InputForm(0, "", "", false, 3, 12), "-1,5e-3");
  type(".5e2" + Return);
  EXPECT_EQ(t_InputForm(0, "", "", false, 3, 12), ".5e2");
  type(".e1" + Return);
  EXPECT_EQ(t_InputForm(0, "", "", false, 3, 12), ".1");
}

TEST_F(LineInputTest, EscapeEmptiesTheLineAndBlanksIt) {
  type("d" + Escape);
  EXPECT_EQ(t_InputForm(0, "P:", "abc", false, 4, 10), "");
  EXPECT_EQ(screenText(0).substr(0, 17), "P:    ..........\n");
  EXPECT_FALSE(Windows[0].InputFinished);
  EXPECT_EQ(Windows[0].TextVpos, 2);
}

TEST_F(LineInputTest, DeletingAndMovingStopAtTheEndsOfTheLine) {
  type(Home + Backspace + Left + Return);
  EXPECT_EQ(t_InputForm(0, "", "12", false, 4, 10), "12");
  type(Right + Right + Backspace + ForwardDelete + Return);
  EXPECT_EQ(t_InputForm(0, "", "34", false, 4, 10), "3");
  EXPECT_EQ(screenText(0).substr(0, 34), "12 .............\n3 ..............\n");
}

TEST_F(LineInputTest, WordMovesDeleteCodeEntryAndCopy) {
  type(Home + WordRight + WordRight + ForwardDelete + WordLeft + CodeEntry + "065" + End +
       WordLeft + WordLeft + WordLeft + Right + Copy + Return);
  EXPECT_EQ(t_InputForm(0, "", "ab cd ef", false, 4, 12), "ab Acdef");
  EXPECT_EQ(testHost().pasteboardText(), "ab Acdef");
  EXPECT_EQ(Windows[0].InputCursorPos, 1);
  EXPECT_EQ(screenText(0).substr(0, 17), "ab Acdef........\n");

  // A non-digit ends the code entry early and is used up; 31 is below the printable codes
  // and is not inserted, while the 7 after the entry is an ordinary key.
  type(CodeEntry + "31x7" + ClearLine + "q" + Return);
  EXPECT_EQ(t_InputForm(0, "", "xyz", false, 4, 12), "q");
  EXPECT_EQ(screenText(0).substr(17, 17), "q   ............\n");
}

TEST_F(LineInputTest, ControlCodesShowAsLettersInColourOne) {
  type(CodeEntry + "001" + Return);
  EXPECT_EQ(t_InputForm(0, "", "B", false, 1, 5), "B\x01");
  EXPECT_EQ(screenText(0).substr(0, 3), "BA.");
  EXPECT_EQ(screenColors(0).substr(0, 9), "C0 10 FF ");
}

TEST_F(LineInputTest, DisplayOnlyShowsTheCutDefault) {
  EXPECT_EQ(t_InputForm(0, "P:", "123456789", true, 4, 4), "1234");
  EXPECT_EQ(Windows[0].TextHpos, 7);
  EXPECT_EQ(t_InputForm(0, "", "123", true, 4, 0), "");
  EXPECT_EQ(screenText(0).substr(0, 17), "P:1234..........\n");
}

TEST_F(LineInputTest, EditorStateWrittenByTheProgramStaysInsideTheLine) {
  constexpr Int Largest = std::numeric_limits<Int>::max();
  EXPECT_EQ(t_InputForm(0, "", "ab cd", true, 4, 10), "ab cd");
  t_Window& record = Windows[0];
  record.InputCursorPos = -7;
  t_InputEdit(0, WordRight[0]);
  EXPECT_EQ(record.InputCursorPos, 2);
  record.InputCursorPos = 40;
  t_InputEdit(0, WordLeft[0]);
  EXPECT_EQ(record.InputCursorPos, 3);
  // A line start at the end of the Int range: the cursor stops there, and no character fits.
  record.InputHpos = Largest;
  record.InputCursorPos = Largest;
  t_InputEdit(0, Right[0]);
  EXPECT_EQ(record.TextHpos, Largest);
  t_InputInsert(0, 'x');
  EXPECT_EQ(record.InputString, "ab cd");
}

TEST_F(LineInputTest, RefusalsNameTheOperation) {
  EXPECT_EQ(t_InputForm(8, "", "x", true, 4, 4), "");
  EXPECT_EQ(t_InputForm(1, "", "x", true, 4, 4), "");
  t_InputEdit(9, 0);
  t_InputInsert(2, 'a');
  EXPECT_EQ(logLines(), (Lines{"t_InputForm: Window is not a graphic window.",
                               "t_InputForm: Window #1 not initialized.",
                               "t_InputEdit: Window is not a graphic window.",
                               "t_InputInsert: Window #2 not initialized."}));
}

}  // namespace
}  // namespace rvtools::testing
