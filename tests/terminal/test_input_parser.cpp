// SPDX-License-Identifier: MIT
// The terminal host's parts: bytes as key strokes, key releases, clicks and pastes, whole or cut
// into single bytes, with every modifier; releases guessed where the terminal reports none; and
// cells as bytes, whole frames and single changes; pixel drawings as quadrant blocks.
#include <gtest/gtest.h>

#include <cstdio>

#include "rvtools/runtime.hpp"
#include "terminal/block_cells.hpp"
#include "terminal/cell_renderer.hpp"
#include "terminal/guessed_releases.hpp"
#include "terminal/input_parser.hpp"
#include "terminal/utf8.hpp"
#include "terminal/window_cells.hpp"

namespace rvtools::terminal {
namespace {

std::string describe(const TerminalInput& input) {
  if (const auto* key = std::get_if<KeyStroke>(&input)) {
    std::string text = "key " + std::to_string(key->KeyNumber);
    for (const char32_t character : charactersOf(key->Characters)) {
      char code[16];
      std::snprintf(code, sizeof code, " U+%04X", static_cast<unsigned>(character));
      text += code;
    }
    return text + " flags " + std::to_string(key->Flags >> 16);
  }
  if (const auto* mouse = std::get_if<MouseReport>(&input)) {
    return std::string(mouse->Pressed ? "press " : "release ") + std::to_string(mouse->Button) +
           " at " + std::to_string(mouse->Column) + "," + std::to_string(mouse->Line) + " flags " +
           std::to_string(mouse->Flags >> 16);
  }
  if (const auto* release = std::get_if<KeyRelease>(&input)) {
    return "release key " + std::to_string(release->KeyNumber);
  }
  if (std::holds_alternative<KeyReleasesReported>(input)) return "releases reported";
  return "paste " + std::get<PastedText>(input).Text;
}

std::vector<std::string> describeAll(const std::vector<TerminalInput>& inputs) {
  std::vector<std::string> texts;
  for (const TerminalInput& input : inputs) texts.push_back(describe(input));
  return texts;
}

std::vector<std::string> parsed(std::string_view bytes) {
  InputParser parser;
  std::vector<TerminalInput> inputs;
  parser.feed(bytes, inputs);
  return describeAll(inputs);
}

// The same bytes, one read per byte, as a slow connection may deliver them.
std::vector<std::string> parsedByteByByte(std::string_view bytes) {
  InputParser parser;
  std::vector<TerminalInput> inputs;
  for (const char byte : bytes) parser.feed(std::string_view(&byte, 1), inputs);
  return describeAll(inputs);
}

std::string key(Int number, char32_t character, Int flags) {
  return describe(KeyStroke{number, utf8Of(character), flags});
}

std::string key(Int number, std::string_view characters, Int flags) {
  return describe(KeyStroke{number, std::string(characters), flags});
}

struct Sequence {
  std::string Bytes;
  std::string Expected;
  // The same key with xterm's modifier parameter: the sequence with "%d" for it, or empty.
  std::string Modified;
};

constexpr Int Arrow = FunctionFlag | NumericPadFlag;

std::vector<Sequence> sequenceTable() {
  std::vector<Sequence> table = {
      {"\x1B[A", key(Key::Up, KeyCharacter::Up, Arrow), "\x1B[1;%dA"},
      {"\x1B[B", key(Key::Down, KeyCharacter::Down, Arrow), "\x1B[1;%dB"},
      {"\x1B[C", key(Key::Right, KeyCharacter::Right, Arrow), "\x1B[1;%dC"},
      {"\x1B[D", key(Key::Left, KeyCharacter::Left, Arrow), "\x1B[1;%dD"},
      {"\x1BOA", key(Key::Up, KeyCharacter::Up, Arrow), ""},
      {"\x1BOB", key(Key::Down, KeyCharacter::Down, Arrow), ""},
      {"\x1BOC", key(Key::Right, KeyCharacter::Right, Arrow), ""},
      {"\x1BOD", key(Key::Left, KeyCharacter::Left, Arrow), ""},
      {"\x1B[H", key(Key::Home, KeyCharacter::Home, FunctionFlag), "\x1B[1;%dH"},
      {"\x1BOH", key(Key::Home, KeyCharacter::Home, FunctionFlag), ""},
      {"\x1B[1~", key(Key::Home, KeyCharacter::Home, FunctionFlag), "\x1B[1;%d~"},
      {"\x1B[7~", key(Key::Home, KeyCharacter::Home, FunctionFlag), "\x1B[7;%d~"},
      {"\x1B[F", key(Key::End, KeyCharacter::End, FunctionFlag), "\x1B[1;%dF"},
      {"\x1BOF", key(Key::End, KeyCharacter::End, FunctionFlag), ""},
      {"\x1B[4~", key(Key::End, KeyCharacter::End, FunctionFlag), "\x1B[4;%d~"},
      {"\x1B[8~", key(Key::End, KeyCharacter::End, FunctionFlag), "\x1B[8;%d~"},
      {"\x1B[2~", key(Key::Insert, KeyCharacter::Insert, FunctionFlag), "\x1B[2;%d~"},
      {"\x1B[3~", key(Key::ForwardDelete, KeyCharacter::ForwardDelete, FunctionFlag), "\x1B[3;%d~"},
      {"\x1B[5~", key(Key::PageUp, KeyCharacter::PageUp, FunctionFlag), "\x1B[5;%d~"},
      {"\x1B[6~", key(Key::PageDown, KeyCharacter::PageDown, FunctionFlag), "\x1B[6;%d~"},
      {"\x1B[E", key(Key::KeypadClear, KeyCharacter::Clear, Arrow), "\x1B[1;%dE"},
      {"\x1BOE", key(Key::KeypadClear, KeyCharacter::Clear, Arrow), ""},
      {"\x1B[Z", key(Key::Tab, "\x19", ShiftFlag), ""},
  };
  const char* const TildeCodes[12] = {"11", "12", "13", "14", "15", "17",
                                      "18", "19", "20", "21", "23", "24"};
  for (int n = 1; n <= 12; ++n) {
    const std::string expected =
        key(functionKeyNumber(n), static_cast<char32_t>(KeyCharacter::F1 + n - 1), FunctionFlag);
    const std::string code = TildeCodes[n - 1];
    table.push_back({"\x1B[" + code + "~", expected, "\x1B[" + code + ";%d~"});
    if (n <= 4) {
      const char letter = static_cast<char>('P' + n - 1);
      table.push_back({std::string("\x1BO") + letter, expected, std::string("\x1B[1;%d") + letter});
    }
    if (n <= 5) table.push_back({std::string("\x1B[[") + char('A' + n - 1), expected, ""});
  }
  const Int Keypad[10] = {Key::Keypad0, Key::Keypad1, Key::Keypad2, Key::Keypad3, Key::Keypad4,
                          Key::Keypad5, Key::Keypad6, Key::Keypad7, Key::Keypad8, Key::Keypad9};
  for (int digit = 0; digit < 10; ++digit) {
    table.push_back({std::string("\x1BO") + char('p' + digit),
                     key(Keypad[digit], std::string(1, char('0' + digit)), NumericPadFlag), ""});
  }
  table.insert(table.end(), {
                                {"\x1BOn", key(Key::KeypadDecimal, ".", NumericPadFlag), ""},
                                {"\x1BOM", key(Key::KeypadEnter, "\x03", NumericPadFlag), ""},
                                {"\x1BOk", key(Key::KeypadPlus, "+", NumericPadFlag), ""},
                                {"\x1BOm", key(Key::KeypadMinus, "-", NumericPadFlag), ""},
                                {"\x1BOj", key(Key::KeypadMultiply, "*", NumericPadFlag), ""},
                                {"\x1BOo", key(Key::KeypadDivide, "/", NumericPadFlag), ""},
                                {"\x1BOX", key(Key::KeypadEquals, "=", NumericPadFlag), ""},
                            });
  // Characters and control keys, as a US keyboard types them.
  table.insert(table.end(), {
                                {"a", key(Key::A, "a", 0), ""},
                                {"A", key(Key::A, "A", ShiftFlag), ""},
                                {"0", key(Key::Digit0, "0", 0), ""},
                                {"\r", key(Key::Return, "\r", 0), ""},
                                {"\t", key(Key::Tab, "\t", 0), ""},
                                {"\x7F", key(Key::Backspace, "\x7F", 0), ""},
                                {"\x13", key(Key::S, "\x13", ControlFlag), ""},
                                {"\x1D", key(Key::RightBracket, "\x1D", ControlFlag), ""},
                                {"\xC3\xA4", key(Key::Unknown, U'ä', 0), ""},
                                {"\xE2\x82\xAC", key(Key::E, U'€', OptionFlag), ""},
                                {"\xE4\xB8\xAD", key(Key::Unknown, U'中', 0), ""},
                                {"\x1Bx", key(Key::X, "x", OptionFlag), ""},
                                {"\x1B\x13", key(Key::S, "\x13", ControlFlag | OptionFlag), ""},
                            });
  return table;
}

// xterm's modifier parameter: 1 + Shift 1 + Alt 2 + Control 4 + Meta 8.
Int flagsOfModifier(int parameter) {
  const int bits = parameter - 1;
  return (bits & 1 ? ShiftFlag : 0) | (bits & 2 ? OptionFlag : 0) | (bits & 4 ? ControlFlag : 0) |
         (bits & 8 ? CommandFlag : 0);
}

TEST(InputParser, EveryKeyOfTheTableWholeSplitAndWithEveryModifier) {
  for (const Sequence& sequence : sequenceTable()) {
    SCOPED_TRACE(sequence.Bytes[0] == '\x1B' ? "ESC" + sequence.Bytes.substr(1) : sequence.Bytes);
    EXPECT_EQ(parsed(sequence.Bytes), std::vector<std::string>{sequence.Expected});
    EXPECT_EQ(parsedByteByByte(sequence.Bytes), std::vector<std::string>{sequence.Expected});
    if (sequence.Modified.empty()) continue;
    InputParser parser;
    std::vector<TerminalInput> inputs;
    parser.feed(sequence.Bytes, inputs);
    const KeyStroke plain = std::get<KeyStroke>(inputs.at(0));
    for (int modifier = 2; modifier <= 16; ++modifier) {
      char bytes[32];
      std::snprintf(bytes, sizeof bytes, sequence.Modified.c_str(), modifier);
      const std::string expected = describe(
          KeyStroke{plain.KeyNumber, plain.Characters, plain.Flags | flagsOfModifier(modifier)});
      EXPECT_EQ(parsedByteByByte(bytes), std::vector<std::string>{expected}) << modifier;
    }
  }
}

TEST(InputParser, KeysInOneReadComeInOrder) {
  EXPECT_EQ(
      parsed("5\x7F\x1B[A\r"),
      (std::vector<std::string>{key(Key::Digit5, "5", 0), key(Key::Backspace, "\x7F", 0),
                                key(Key::Up, KeyCharacter::Up, Arrow), key(Key::Return, "\r", 0)}));
}

TEST(InputParser, LoneEscapeIsTheEscapeKeyOnceTheTimeoutPasses) {
  InputParser parser;
  std::vector<TerminalInput> inputs;
  parser.feed("\x1B", inputs);
  EXPECT_TRUE(inputs.empty());
  EXPECT_EQ(parser.patience(), EscapeTimeout);
  parser.timeOut(inputs);
  EXPECT_EQ(describeAll(inputs), std::vector<std::string>{key(Key::Escape, "\x1B", 0)});
  EXPECT_EQ(parser.patience(), std::nullopt);
  // Escape and "[" typed apart are Alt with "[", not the start of a sequence.
  inputs.clear();
  parser.feed("\x1B[", inputs);
  parser.timeOut(inputs);
  EXPECT_EQ(describeAll(inputs), std::vector<std::string>{key(Key::LeftBracket, "[", OptionFlag)});
  // Two Escapes are one Escape key and the start of what follows.
  EXPECT_EQ(parsed("\x1B\x1B[B"),
            (std::vector<std::string>{key(Key::Escape, "\x1B", 0),
                                      key(Key::Down, KeyCharacter::Down, Arrow)}));
}

TEST(InputParser, BracketedPasteKeepsItsTextWholeAcrossReads) {
  const std::string bytes = "\x1B[200~12\r\nw\xC3\xB6rter \x1B[A\x1B[201~x";
  const std::vector<std::string> expected = {"paste 12\r\nw\xC3\xB6rter \x1B[A",
                                             key(Key::X, "x", 0)};
  EXPECT_EQ(parsed(bytes), expected);
  EXPECT_EQ(parsedByteByByte(bytes), expected);
  // A paste whose end never comes is taken as it is after a while.
  InputParser parser;
  std::vector<TerminalInput> inputs;
  parser.feed("\x1B[200~abc\x1B[20", inputs);
  EXPECT_EQ(parser.patience(), PasteTimeout);
  parser.timeOut(inputs);
  EXPECT_EQ(describeAll(inputs), std::vector<std::string>{"paste abc\x1B[20"});
}

TEST(InputParser, MouseReportsInTheSgrAndTheFirstForm) {
  EXPECT_EQ(parsed("\x1B[<0;5;3M\x1B[<0;5;3m\x1B[<2;80;26M\x1B[<20;1;2M"),
            (std::vector<std::string>{
                "press 0 at 5,3 flags 0", "release 0 at 5,3 flags 0", "press 2 at 80,26 flags 0",
                "press 0 at 1,2 flags " + std::to_string((ShiftFlag | ControlFlag) >> 16)}));
  EXPECT_EQ(parsedByteByByte("\x1B[M !\"\x1B[M#!\""),
            (std::vector<std::string>{"press 0 at 1,2 flags 0", "release 0 at 1,2 flags 0"}));
  // The wheel and motion are no clicks.
  EXPECT_TRUE(parsed("\x1B[<64;1;1M\x1B[<35;4;4M").empty());
}

TEST(InputParser, BytesThatMeanNothingAreDroppedAndWhatFollowsIsRead) {
  EXPECT_EQ(parsed("\xFF\x1B[?1;2c\x1B[>0;95;0c\x1B[Ib"),
            std::vector<std::string>{key(Key::B, "b", 0)});
  EXPECT_EQ(
      parsed("\xC3\x1B[Dz"),
      (std::vector<std::string>{key(Key::Left, KeyCharacter::Left, Arrow), key(Key::Z, "z", 0)}));
}

// The kitty keyboard protocol: "CSI code ; modifiers:event ; text u", 1 press, 2 repeat,
// 3 release, and the xterm forms with the event added.
TEST(InputParser, KittyKeyEventsArePressesRepeatsAndReleases) {
  const std::string bytes =
      "\x1B[97;;97u\x1B[97;1:2;97u\x1B[97;1:3u\x1B[97;2;65u\x1B[115;5u\x1B[93;5u\x1B[120;3u"
      "\x1B[13u\x1B[13;1:3u\x1B[27u\x1B[9;2u\x1B[127;1:2u\x1B[1;1:3A\x1B[3;1:2~\x1B[1;2:3P"
      "\x1B[57404u\x1B[57414;1:3u\x1B[57419u\x1B[57427~\x1B[57441;2u\x1B[228;;228u"
      "\x1B[0;;20013u\x1B[49;2;33u\x1B[?27u\x1B[?1u";
  const std::vector<std::string> expected = {
      key(Key::A, "a", 0),
      key(Key::A, "a", 0),
      "release key " + std::to_string(Key::A),
      key(Key::A, "A", ShiftFlag),
      key(Key::S, "\x13", ControlFlag),
      key(Key::RightBracket, "\x1D", ControlFlag),  // the host's menu key, as before
      key(Key::X, "x", OptionFlag),
      key(Key::Return, "\r", 0),
      "release key " + std::to_string(Key::Return),
      key(Key::Escape, "\x1B", 0),
      key(Key::Tab, "\x19", ShiftFlag),
      key(Key::Backspace, "\x7F", 0),
      "release key " + std::to_string(Key::Up),
      key(Key::ForwardDelete, KeyCharacter::ForwardDelete, FunctionFlag),
      "release key " + std::to_string(Key::F1),
      key(Key::Keypad5, "5", NumericPadFlag),
      "release key " + std::to_string(Key::KeypadEnter),
      key(Key::Up, KeyCharacter::Up, Arrow),
      key(Key::KeypadClear, KeyCharacter::Clear, Arrow),
      key(Key::Unknown, U'ä', 0),
      key(Key::Unknown, U'中', 0),
      key(Key::Digit1, "!", ShiftFlag),  // the text of another layout, on the key of its code
      "releases reported",
  };
  EXPECT_EQ(parsed(bytes), expected);
  EXPECT_EQ(parsedByteByByte(bytes), expected);
}

TEST(GuessedReleases, AKeyGoesUpWhenItsPressesStop) {
  using namespace std::chrono_literals;
  const GuessedReleases::Clock::time_point start{};
  GuessedReleases guessed;
  EXPECT_EQ(guessed.nextRelease(), std::nullopt);
  guessed.press(Key::A, start);
  EXPECT_EQ(guessed.nextRelease(), start + 700ms);
  guessed.press(Key::A, start + 650ms);  // the first repeat
  guessed.press(Key::B, start + 700ms);
  EXPECT_EQ(guessed.nextRelease(), start + 800ms);
  EXPECT_TRUE(guessed.takeReleased(start + 799ms).empty());
  EXPECT_EQ(guessed.takeReleased(start + 800ms), std::vector<Int>{Key::A});
  guessed.press(Key::A, start + 900ms);  // pressed anew
  EXPECT_EQ(guessed.takeReleased(start + 1400ms), std::vector<Int>{Key::B});
  EXPECT_EQ(guessed.nextRelease(), start + 1600ms);
}

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

// Two cells of 16 x 32 pixels side by side in `paper`; the second is drawn on and shown.
struct TwoCells {
  static constexpr Int Width = 32, Height = 32;
  std::vector<UInt8> Pixels;
  explicit TwoCells(CellColour paper) : Pixels(static_cast<std::size_t>(4 * Width * Height)) {
    for (Int i = 0; i < Width * Height; ++i) set(i % Width, i / Width, paper);
  }
  void set(Int x, Int y, CellColour colour) {
    UInt8* pixel = Pixels.data() + 4 * (y * Width + x);
    pixel[0] = 255;
    pixel[1] = static_cast<UInt8>(colour >> 16);
    pixel[2] = static_cast<UInt8>(colour >> 8);
    pixel[3] = static_cast<UInt8>(colour);
  }
  Cell second() const { return blockCellOf(Pixels.data(), Width, 16, 0, 16, 32); }
};

TEST(BlockCells, LinesOnePixelWideStayAsQuartersInTheirOwnColour) {
  const CellColour paper = rgbColour(0, 0, 128), yellow = rgbColour(255, 255, 0);
  TwoCells uniform(paper);
  EXPECT_EQ(uniform.second(), (Cell{U' ', paper, paper}));
  // A row at the top of the lower half, a column in the right half, a single pixel.
  TwoCells row(paper), column(paper), point(paper);
  for (Int x = 16; x < 32; ++x) row.set(x, 16, yellow);
  for (Int y = 0; y < 32; ++y) column.set(24, y, yellow);
  point.set(16, 15, yellow);
  EXPECT_EQ(row.second(), (Cell{U'▄', yellow, paper}));
  EXPECT_EQ(column.second(), (Cell{U'▐', yellow, paper}));
  EXPECT_EQ(point.second(), (Cell{U'▘', yellow, paper}));
  // The first cell, all paper, plays no part; the ink is the mean of what differs from paper.
  TwoCells two(paper);
  two.set(16, 0, rgbColour(255, 0, 0));
  two.set(31, 31, rgbColour(0, 255, 0));
  EXPECT_EQ(two.second(), (Cell{U'▚', rgbColour(127, 127, 0), paper}));
  // Most pixels are the paper, whatever colour they are.
  TwoCells filled(yellow);
  filled.set(31, 0, paper);
  EXPECT_EQ(filled.second(), (Cell{U'▝', paper, yellow}));
}

}  // namespace
}  // namespace rvtools::terminal
