// SPDX-License-Identifier: MIT
// Printing: glyphs at every depth, display modes and the escape, control codes, tabs, redirection,
// title and separator lines, the control-S pause and refusals.
#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <thread>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

using namespace std::chrono_literals;

const std::string Escape = "\x1b";
const std::string Blank8 = "        \n";  // an empty line of window 0

class PrintTest : public RuntimeTest {
 protected:
  // Window 0 of 8 x 3 cells at 24 bits, blank in colour byte C0, cursor at the top left.
  void SetUp() override {
    RuntimeTest::SetUp();
    blankWindow(0, 8, 3);
  }
  void blankWindow(UInt8 window, Int columns, Int lines) {
    initTextWindow(window, 24, columns, lines);
    t_ClearEndOfWindow(window);
    clearLog();
  }
};

// The window's character codes as they are, line by line, each line closed by '\n'.
std::string screenBytes(UInt8 window) {
  const t_Window& record = Windows[window];
  std::string text;
  for (Int line = 0; line < record.TextHeight; ++line) {
    const auto first = VideoMemory.begin() + record.TextMemoryStart + line * record.TextWidth;
    text.append(first, first + record.TextWidth) += '\n';
  }
  return text;
}

// Runs `action` on a thread once output has taken every queued key and had time to go on.
std::thread onceKeysAreTaken(std::function<void()> action) {
  return std::thread([action] {
    for (int step = 0; step < 400 && EventQueue.count() > 0; ++step) {
      std::this_thread::sleep_for(5ms);
    }
    std::this_thread::sleep_for(30ms);
    action();
  });
}

TEST_F(PrintTest, EscapeSetsColoursTabStopsCursorAndBorderAndKeepsGoingOnOtherCodes) {
  t_Print(0, "A" + Escape + "AB");
  t_Print(0, Escape + "a");
  EXPECT_EQ(Windows[0].TextDisplayMode, 99);
  t_Print(0, Escape + "Qx");   // the escape code itself is drawn, Q sets paper 1
  t_Print(0, Escape + "?@y");  // "?" lies just below the colour codes
  EXPECT_EQ(screenText(0), "ABa.x?y \n" + Blank8 + Blank8);
  EXPECT_EQ(screenColors(0),
            "C0 10 10 10 11 11 01 C0\nC0 C0 C0 C0 C0 C0 C0 C0\nC0 C0 C0 C0 C0 C0 C0 C0\n");
  EXPECT_EQ(Windows[0].TextDisplayMode, 0);
  EXPECT_EQ(Windows[0].TextColor, 0x01);
  // Tab stops, cursor jumps and the border.
  blankWindow(1, 24, 2);
  t_Print(1, "AB" + Escape + "iC" + Escape + "jD" + Escape + "kE");
  EXPECT_EQ(screenText(1), "AB        C         D   \nE                       \n");
  t_Print(1, Escape + "e");
  EXPECT_EQ(cursorOf(1), Position(24, 2));
  t_Htab(1, 1);
  t_Print(1, Escape + "f" + Escape + "p");
  EXPECT_EQ(cursorOf(1), Position(24, 2));
  EXPECT_EQ(testHost().windowState(1).Border, PaletteColor(2));
  EXPECT_EQ(Windows[1].TextDisplayMode, 0);
  EXPECT_EQ(logText(), "");
}

TEST_F(PrintTest, DisplayModesTranslateAndRestoreTheLook) {
  t_DisplayMode(0, 3);
  t_Print(0, "\001B");
  EXPECT_FALSE(Windows[0].TextInverse);
  t_DisplayMode(0, 4);
  t_Print(0, "\002C€");
  EXPECT_EQ(Windows[0].RGBColor, PaletteColor(1));  // the drawing colour stays
  t_DisplayMode(0, 1);
  t_Print(0, "A~");
  t_DisplayMode(0, 2);
  t_Print(0, "aA");
  t_DisplayMode(0, 7);
  t_Print(0, "\001\r");  // from mode 3 on, codes below 32 are drawn, not acted on
  EXPECT_EQ(screenBytes(0), "ABBC?\xC1\xFE\x81\n\x01\x01\r     \n" + Blank8);
  EXPECT_EQ(screenColors(0),
            "0C C0 10 C0 10 C0 C0 C0\nC0 C0 C0 C0 C0 C0 C0 C0\nC0 C0 C0 C0 C0 C0 C0 C0\n");
  EXPECT_EQ(cursorOf(0), Position(4, 2));
  EXPECT_EQ(Windows[0].TextColor, 0xC0);
}

TEST_F(PrintTest, CharactersBeyondTheSetPrintAsQuestionMarks) {
  t_Print(0, "1€2ä");
  t_Print(0, Text{{'x', 13, 0xE4}});
  t_PrintChar(0, 13);  // no control-code handling: glyph 13
  EXPECT_EQ(screenBytes(0), "1?2\xE4x   \n\xE4\r      \n" + Blank8);
}

TEST_F(PrintTest, ControlCodesMoveClearAndSwitch) {
  const int beeps = testHost().beeps();
  t_Print(0, "ABCD\x08\x08X\x0D\x0FI\x11J\x0EK\x07\x09\x10\x15\x18");
  EXPECT_EQ(testHost().beeps(), beeps + 1);
  EXPECT_EQ(screenText(0), "ABXD    \nIJK     \n" + Blank8);
  EXPECT_EQ(screenColors(0),
            "C0 C0 C0 C0 C0 C0 C0 C0\n0C C0 C0 C0 C0 C0 C0 C0\nC0 C0 C0 C0 C0 C0 C0 C0\n");
  t_Print(0, Text{{25, 29, 10, 28, 28, 26, 30, 'Z', 20, 'A', 31, 'a', 19}});
  EXPECT_EQ(screenBytes(0), "Z\xC1\x81     \n" + Blank8 + Blank8);
  EXPECT_EQ(Windows[0].TextDisplayMode, 0);
  t_Print(0, "\x17");  // scroll up
  EXPECT_EQ(screenText(0), Blank8 + Blank8 + Blank8);
  t_Print(0, "\x0DQ\x16");  // scroll down moves Q to the last line
  EXPECT_EQ(screenText(0), Blank8 + Blank8 + "Q       \n");
  t_Print(0, "\x0CW");
  EXPECT_EQ(screenText(0), "W       \n" + Blank8 + Blank8);
  EXPECT_EQ(cursorOf(0), Position(2, 1));
}

TEST_F(PrintTest, TabsBlanksAndLinesOnlyMoveRight) {
  t_Print(0, "ABCDEF");
  t_Htab(0, 4);
  t_PrintTab(0, 2, '*');
  t_PrintSpc(0, -5);
  EXPECT_EQ(cursorOf(0), Position(4, 1));
  t_PrintTab(0, 6, '*');
  t_PrintSpc(0, 3);
  t_Htab(0, 3);
  t_TextLine(0);
  t_TextHline(0, 2, 4, 3, '=');
  t_TextHline(0, 5, 4, 3, '#');
  EXPECT_EQ(screenBytes(0), "ABC**   \n  " + std::string(6, '\x9C') + "\n ===    \n");
  EXPECT_EQ(cursorOf(0), Position(1, 3));
  EXPECT_EQ(logText(), "");
}

TEST_F(PrintTest, RedirectedOutputStillMovesTheCursor) {
  t_RedirectOutput(0, 2);
  t_Print(0, "HI");
  EXPECT_EQ(cursorOf(0), Position(3, 1));
  t_Print(0, "\rä€");
  EXPECT_EQ(logText(), "HI\rä?");
  EXPECT_EQ(cursorOf(0), Position(5, 1));
  clearLog();
  t_RedirectOutput(0, 0);
  t_Print(0, "HIJKL\r");
  EXPECT_EQ(logText(), "");
  EXPECT_EQ(cursorOf(0), Position(2, 2));
  EXPECT_EQ(screenText(0), Blank8 + Blank8 + Blank8);
}

TEST_F(PrintTest, HeaderFillsTheAreaWithoutScrolling) {
  blankWindow(2, 40, 2);
  t_Print(2, "\r");
  t_Header(2, "AB", "CD");
  // Only the closing t_Cr scrolls: a title that wrapped would have scrolled once more.
  EXPECT_EQ(screenText(2), "AB" + std::string(36, ' ') + "CD\n" + std::string(40, ' ') + "\n");
  EXPECT_EQ(cursorOf(2), Position(1, 2));

  blankWindow(3, 10, 1);
  t_Color(3, 3);
  t_Header(3, "LEFT", "RIGHT");
  EXPECT_EQ(screenText(3), "LEFT RIGHT\n");
  EXPECT_EQ(cursorOf(3), Position(1, 1));
  t_Header(3, "ABCDEFGH", "IJKLMN€");
  EXPECT_EQ(screenText(3), "ABCDEFGHIJ\n");
  t_Header(3, "", "€");
  EXPECT_EQ(screenText(3), "         ?\n");
  EXPECT_EQ(screenColors(3), "30 30 30 30 30 30 30 30 30 30\n");
}

TEST_F(PrintTest, SpansBeyondTheWindowDrawWhatLiesInsideAndAreRefusedOnce) {
  constexpr Int Far = Int{1} << 40;
  t_TextHline(0, 1, Far, 1, '=');
  t_TextHline(0, -Far, Far, 3, '-');
  t_TextHline(0, 3, 5, Far, '#');
  Windows[0].TextLastColumn = Far;  // a text area far wider than the window
  t_Vtab(0, 2);
  t_Htab(0, 7);
  t_TextLine(0);
  EXPECT_EQ(screenText(0), "========\n      ..\n--------\n");
  // The title is no wider than the window; the closing t_Cr scrolls the area and blanks its
  // last line up to the window's edge.
  t_Header(0, "AB", "CD");
  EXPECT_EQ(screenText(0), "      ..\nAB    CD\n" + Blank8);
  EXPECT_EQ(cursorOf(0), Position(1, 3));
  EXPECT_EQ(logLines(), (Lines{"t_PrintSymbol: Window #0 illegal coordinates (x = 9, y = 1).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = -1099511627776, "
                               "y = 3).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 3, y = "
                               "1099511627776).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 9, y = 2).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 9, y = 3)."}));
  // Tab stops and the escape's jump to the last column at the ends of the Int range.
  clearLog();
  Windows[0].TextLastColumn = 8;
  Windows[0].TextHpos = std::numeric_limits<Int>::max();
  t_Print(0, Escape + "i");
  EXPECT_EQ(cursorOf(0), Position(1, 3));
  Windows[0].TextFirstColumn = std::numeric_limits<Int>::min();
  t_Print(0, Escape + "f");
  EXPECT_EQ(Windows[0].TextDisplayMode, 0);
  EXPECT_TRUE(logLines().empty());
}

TEST_F(PrintTest, ControlSPausesUntilTheNextKeyOrMenuChoice) {
  EventQueue.append(keyEvent(19));
  std::string pausedScreen;
  std::thread typist = onceKeysAreTaken([&] {
    pausedScreen = screenText(0);
    EventQueue.append(keyEvent('x'));
  });
  t_Print(0, "AB\rCD");
  typist.join();
  EXPECT_EQ(pausedScreen, "AB      \n" + Blank8 + Blank8);
  EXPECT_EQ(EventQueue.count(), 0u);  // the key that resumed output is gone
  EXPECT_EQ(screenText(0), "AB      \nCD      \n" + Blank8);
  // A menu choice ends the pause as well and stays queued for the program.
  EventQueue.append(keyEvent('q'));
  EventQueue.append(keyEvent(19));
  std::thread menu = onceKeysAreTaken([] {
    t_MenuEvent choice;
    choice.Kind = 3;
    MenuEventQueue.append(choice);
  });
  t_Print(0, "Z");
  menu.join();
  EXPECT_EQ(MenuEventQueue.count(), 1u);
  EXPECT_EQ(EventQueue.count(), 0u);
  EXPECT_EQ(screenText(0), "AB      \nCDZ     \n" + Blank8);

  EventQueue.append(keyEvent(19));
  EventQueue.append(keyEvent('q'));  // not the most recent: no pause
  t_Print(0, "");
  EXPECT_EQ(EventQueue.count(), 2u);
}

TEST_F(PrintTest, RefusalsAndTheNotDrawingState) {
  t_Print(8, "x");
  t_Print(5, "x");
  t_PrintChar(5, 'x');
  t_TextLine(5);
  t_DisplayMode(9, 0);
  const t_DisplayedCharacter refused = t_ApplyDisplayMode(5, 65);
  EXPECT_FALSE(refused.Draw || refused.Inverse);
  EXPECT_EQ(refused.Color, 240);
  t_PrintControl(5, 13);
  Windows[5].TextRedirectOutput = 0;
  t_PrintControl(5, 13);
  Windows[5].TextRedirectOutput = 2;
  t_PrintControl(5, 12);
  Windows[0].Font = EmptyFont();
  t_Print(0, "x");
  EXPECT_EQ(logText(),
            "t_Print: Window is not a graphic window.\n"
            "t_Print: Window #5 not initialized.\n"
            "t_PrintChar: Window #5 not initialized.\n"
            "t_TextLine: Window #5 not initialized.\n"
            "t_DisplayMode: Window is not a graphic window.\n"
            "t_ApplyDisplayMode: Window #5 not initialized.\n"
            "t_PrintControl: Window #5 not initialized.\n"
            "\x0c"
            "t_Print: Window #0 has no text font.\n");
}

// An 8 x 8 font whose glyph 1 has ink in columns 0..3, grey 128 in column 4 and paper in
// columns 5..7; every other glyph is paper.
t_Font stripeFont() {
  t_Font font = EmptyFont();
  font.Format = 2;
  font.Start = 0;
  font.End = 255;
  font.Width = 8;
  font.Height = 8;
  std::vector<UInt8> data(256 * 64, 0);
  for (int row = 0; row < 8; ++row) {
    for (int column = 0; column < 8; ++column) {
      data[64 + row * 8 + column] = column < 4 ? 255 : column == 4 ? 128 : 0;
    }
  }
  font.Data = SharedBytes(std::move(data));
  return font;
}

class GlyphTest : public RuntimeTest {
 protected:
  // A 32 x 32 window of 4 x 4 cells at the given depth.
  void initStripeWindow(Int depth) {
    t_InitWindow(0, depth, false, 32, 32, 0, 0, stripeFont(), true);
    ASSERT_TRUE(Windows[0].Initialized);
    clearLog();
  }
  const UInt8* picture() const { return &VideoMemory[Windows[0].MemoryStart]; }
};

// Colour byte 0x12: red ink (255, 0, 0) on navy paper (0, 0, 128); the grey column mixes to
// (128, 0, 63), in grey levels red is 85, navy 42 and the mix 62, and at 4 bits the ink is
// colour 1, the paper colour 2 and the mix nearest to colour 8.
constexpr UInt8 RedOnNavy = 0x12;

TEST_F(GlyphTest, EachDepthMixesInkAndPaperKeepsBytesItDoesNotColourAndInverts) {
  // The top row of cell 2: its 8 pixels take `depth` bytes from byte `depth` on.
  const std::vector<std::vector<UInt8>> rows = {
      {7,   255, 0, 0,  255, 255, 0, 0,   255, 255, 0, 0,   255, 255, 0, 0,  // 32 bits
       255, 128, 0, 63, 255, 0,   0, 128, 255, 0,   0, 128, 255, 0,   0, 128},
      {7, 85, 0, 85, 0, 85, 0, 85, 0, 62, 0, 42, 0, 42, 0, 42},  // 16 bits
      {85, 85, 85, 85, 62, 42, 42, 42},
      {0x11, 0x11, 0x82, 0x22},
      {255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 128, 0, 63, 0, 0, 128, 0, 0, 128, 0, 0, 128}};
  for (const std::vector<UInt8>& row : rows) {
    const Int depth = static_cast<Int>(row.size());
    initStripeWindow(depth);
    VideoMemory[Windows[0].MemoryStart + depth] = 7;  // the cell's first byte
    t_PrintSymbol(0, 1, RedOnNavy, 2, 1);
    EXPECT_EQ(std::vector<UInt8>(picture() + depth, picture() + 2 * depth), row) << depth;
  }

  initStripeWindow(1);
  t_PrintSymbol(0, 1, 0xF0, 1, 1);
  EXPECT_EQ(picture()[0], 0xF8);  // ink and the light grey column are set
  Windows[0].TextInverse = true;
  t_PrintSymbol(0, 1, 0xF0, 2, 1);
  EXPECT_EQ(picture()[1], 0x07);
  EXPECT_EQ(screenColors(0).substr(0, 5), "F0 0F");
}

// A font of width x 3 cells whose glyphs hold varied greys, pure paper and pure ink among them,
// different for every code, width and variant.
t_Font variedFont(Int width, int variant) {
  t_Font font = stripeFont();
  font.Width = width;
  font.Height = 3;
  std::vector<UInt8> data(static_cast<std::size_t>(256 * width * 3));
  for (std::size_t i = 0; i < data.size(); ++i) {
    data[i] = i % 7 == 0 ? 255 : i % 5 == 0 ? 0 : static_cast<UInt8>(i * 53 + width + variant);
  }
  font.Data = SharedBytes(std::move(data));
  return font;
}

int mixed(int ink, int paper, int grey) {
  return ink * grey / 255 + (255 - grey) * paper / 255;
}

int paletteGrey(int n) {
  return (PaletteRed[n] + PaletteGreen[n] + PaletteBlue[n]) / 3;
}

// The palette colour nearest to a mix: a grey by its sum, other colours by the squared distance,
// the lower number of two as near.
int nearestColour(int red, int green, int blue) {
  if (red == green && green == blue) {
    const int sum = 3 * red;
    return sum < 192 ? 0 : sum <= 383 ? 5 : sum < 576 ? 10 : 15;
  }
  int best = 65535, choice = 0;
  for (int n = 0; n < 16; ++n) {
    const int dr = red - PaletteRed[n], dg = green - PaletteGreen[n], db = blue - PaletteBlue[n];
    const int distance = dr * dr + dg * dg + db * db;
    if (distance < best) {
      best = distance;
      choice = n;
    }
  }
  return choice;
}

// Pixel (x, y) of a picture `width` pixels wide at `depth`, set to grey `grey` of ink f on
// paper b, one pixel at a time.
void drawReferencePixel(UInt8* m, Int depth, Int width, Int x, Int y, int f, int b, int grey) {
  const int red = mixed(PaletteRed[f], PaletteRed[b], grey);
  const int green = mixed(PaletteGreen[f], PaletteGreen[b], grey);
  const int blue = mixed(PaletteBlue[f], PaletteBlue[b], grey);
  const auto level = static_cast<UInt8>(mixed(paletteGrey(f), paletteGrey(b), grey));
  const Int p = y * width + x;
  if (depth == 1) {
    UInt8& byte = m[y * (width / 8) + x / 8];
    const int bit = 0x80 >> (x % 8);
    byte = static_cast<UInt8>((red + green + blue) / 3 >= 128 ? byte | bit : byte & ~bit);
  } else if (depth == 4) {
    UInt8& byte = m[y * (width / 2) + x / 2];
    const int colour = nearestColour(red, green, blue);
    byte = static_cast<UInt8>(x % 2 == 0 ? (byte & 0x0F) | colour << 4 : (byte & 0xF0) | colour);
  } else if (depth == 8 || depth == 16) {
    m[p * depth / 8 + depth / 16] = level;
  } else {
    UInt8* pixel = m + p * depth / 8 + depth / 32;
    pixel[0] = static_cast<UInt8>(red), pixel[1] = static_cast<UInt8>(green);
    pixel[2] = static_cast<UInt8>(blue);
  }
}

TEST_F(GlyphTest, CellsPrintedAgainEqualThePixelByPixelDrawingAtEveryDepthAndPlace) {
  // Cells 5 pixels wide start at every bit of a byte; cells 16 wide, in two fonts of that size,
  // have the usual row lengths. Each cell is printed over once, and the codes and colours repeat,
  // so that most prints use a cell drawn before. Every other cell keeps the pattern, and every
  // byte of the window's block is compared, so that a cell that reaches too far shows.
  const std::vector<std::tuple<UInt8, UInt8>> prints = {{'A', 0x12}, {'B', 0xF0}, {'A', 0x12},
                                                        {'A', 0x5A}, {7, 0x3C},   {'B', 0xF0}};
  for (const Int depth : {1, 4, 8, 16, 24, 32}) {
    for (const t_Font& font : {variedFont(5, 0), variedFont(16, 0), variedFont(16, 1)}) {
      const Int fontWidth = font.Width;
      t_InitWindow(0, depth, false, 80, 6, 0, 0, font, true);
      UInt8* memory = &VideoMemory[Windows[0].MemoryStart];
      const Int bytes = Windows[0].MemoryEnd - Windows[0].MemoryStart + 1;
      for (Int a = 0; a < bytes; ++a) memory[a] = static_cast<UInt8>(a * 151 + 9);
      std::vector<UInt8> expected(memory, memory + bytes);
      Int turn = 0;
      for (Int line = 1; line <= 2; ++line) {
        for (Int column = line; column <= 80 / fontWidth; column += 2, ++turn) {
          for (Int again = 0; again < 2; ++again) {
            const auto [code, colours] = prints[(turn + again) % prints.size()];
            t_PrintSymbol(0, code, colours, column, line);
            for (Int i = 0; i < fontWidth * 3; ++i) {
              drawReferencePixel(expected.data(), depth, 80,
                                 (column - 1) * fontWidth + i % fontWidth,
                                 (line - 1) * 3 + i / fontWidth, colours >> 4, colours & 15,
                                 font.Data[(code * fontWidth * 3) + i]);
            }
          }
        }
      }
      const auto firstDifference = std::mismatch(expected.begin(), expected.end(), memory).first;
      EXPECT_EQ(firstDifference - expected.begin(), bytes)
          << depth << " bits, cells " << fontWidth << " wide";
    }
  }
}

TEST_F(GlyphTest, SkippedDrawingStillRecordsTheCell) {
  initStripeWindow(24);
  t_PrintSymbol(0, 1, RedOnNavy, 1, 1);
  t_Font narrow = stripeFont();
  narrow.Start = 2;
  Windows[0].Font = narrow;
  t_PrintSymbol(0, 1, 0xF0, 1, 1);  // below Start: pixels stay
  EXPECT_EQ(picture()[0], 255);
  EXPECT_EQ(screenColors(0).substr(0, 2), "F0");

  t_Font shortData = stripeFont();
  shortData.Data = SharedBytes(std::vector<UInt8>(100, 255));  // ends inside glyph 1
  Windows[0].Font = shortData;
  t_PrintSymbol(0, 65, 0xF0, 2, 1);
  EXPECT_EQ(picture()[8 * 3], 0);
  EXPECT_EQ(screenText(0).substr(0, 4), ".A..");

  t_Font plain = stripeFont();
  plain.Format = 0;
  Windows[0].Font = plain;
  t_PrintSymbol(0, 66, 0xF0, 3, 1);
  plain.Format = 7;
  Windows[0].Font = plain;
  t_PrintSymbol(0, 67, 0xF0, 4, 1);
  EXPECT_EQ(screenText(0).substr(0, 4), ".ABC");
  EXPECT_EQ(logLines(), (Lines{"t_PrintSymbol: Font format must be uncompressed grey for "
                               "text-printing.",
                               "t_PrintSymbol: Illegal font format."}));
}

TEST_F(GlyphTest, CellsBeyondThePictureAreRefused) {
  initStripeWindow(24);
  t_PrintSymbol(0, 1, RedOnNavy, 4, 4);  // its right edge is the window's
  t_PrintSymbol(0, 1, RedOnNavy, 5, 1);
  t_PrintSymbol(0, 1, RedOnNavy, 0, 1);
  t_PrintSymbol(0, 1, RedOnNavy, 1, -3);
  t_PrintSymbol(8, 1, RedOnNavy, 1, 1);
  t_PrintSymbol(1, 1, RedOnNavy, 1, 1);
  t_Font wide = stripeFont();
  wide.Width = std::numeric_limits<Int>::max() / 2 + 1;  // two cells overflow the Int range
  t_WindowFont(0, wide);
  t_PrintSymbol(0, 1, RedOnNavy, 2, 1);
  EXPECT_EQ(screenText(0), "....\n....\n....\n....\n");
  EXPECT_EQ(logLines(), (Lines{"t_PrintSymbol: Window #0 illegal coordinates (x = 5, y = 1).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 0, y = 1).",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 1, y = -3).",
                               "t_PrintSymbol: Window is not a graphic window.",
                               "t_PrintSymbol: Window #1 not initialized.",
                               "t_PrintSymbol: Window #0 illegal coordinates (x = 2, y = 1)."}));
}

TEST_F(GlyphTest, RedirectionWritesToStandardOutputOnly) {
  Windows[3].TextRedirectOutput = 2;  // a window that was never initialised
  t_PrintSymbol(3, 'H', 0xF0, 1, 1);
  t_PrintSymbol(3, 0xE4, 0xF0, 1, 1);
  Windows[3].TextRedirectOutput = 0;
  t_PrintSymbol(3, 'X', 0xF0, 1, 1);
  EXPECT_EQ(logText(), "H\xC3\xA4");
}

}  // namespace
}  // namespace rvtools::testing
