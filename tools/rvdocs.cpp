// SPDX-License-Identifier: MIT
// rvdocs: draws the manual's pictures with the runtime itself, so that no picture can differ
// from what the runtime draws. It runs a program on the headless host that draws each picture
// into window 0 and saves it (t_SavePicture), and writes the table of the character set from
// FontCodeCharacters:
//
//   <folder>/images/palette.png       the sixteen colours with their numbers
//   <folder>/images/colour-<n>.png    one swatch per colour, for the palette's table
//   <folder>/images/characters.png    the 256 codes of the regular font
//   <folder>/images/lores-grid.png    the low-resolution grid: two points a cell
//   <folder>/images/lores-modes.png   one shape in the four lo-res modes
//   <folder>/images/pixel-shapes.png  what each pixel operation draws
//   <folder>/images/pixels-and-text.png  a drawing, and the cells a print repaints over it
//   <folder>/character-codes.md       the Unicode character each code shows
//
// The build runs it into build/manual; a test compares those files with docs/manual.
//
//   RvDocs.app/Contents/MacOS/rvdocs <folder>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "rvtools/headless.hpp"
#include "rvtools/picture.hpp"
#include "rvtools/rvtools.hpp"

namespace {

using rvtools::Int;
using rvtools::UInt8;

constexpr UInt8 Window = 0;
constexpr UInt8 White = 15;
constexpr UInt8 Grey = 10;
constexpr UInt8 Black = 0;
constexpr UInt8 Yellow = 13;
constexpr UInt8 Blue = 6;
constexpr UInt8 SkyBlue = 7;
constexpr UInt8 Orange = 9;
constexpr UInt8 Pink = 11;
constexpr UInt8 Green = 12;
constexpr const char* HexDigits = "0123456789ABCDEF";

UInt8 colourByte(UInt8 ink, UInt8 paper) {
  return static_cast<UInt8>(ink * 16 + paper);
}

// Window 0 at 24 bits, columns x lines of the regular font, without a border; every cell blank
// in white on black.
void openWindow(Int columns, Int lines) {
  rvtools::t_InitWindow(Window, 24, columns, lines, 0, "MenloRegular 16x32.font");
  rvtools::t_WindowFront(Window);
  rvtools::t_Print(Window, "\x1bO\x1bP\f");
}

void write(Int column, Int line, std::string_view text, UInt8 colour) {
  for (const char character : text) {
    rvtools::t_PrintSymbol(Window, static_cast<UInt8>(character), colour, column++, line);
  }
}

bool save(const std::filesystem::path& path) {
  if (rvtools::t_SavePicture(Window, path.string())) return true;
  std::fprintf(stderr, "rvdocs: could not write %s\n", path.c_str());
  return false;
}

// Sixteen swatches of 4 x 2 cells, each with its number in a colour that can be read on it.
bool drawPalette(const std::filesystem::path& images) {
  openWindow(64, 2);
  for (UInt8 colour = 0; colour < 16; ++colour) {
    const bool dark =
        colour == 0 || colour == 2 || colour == 4 || colour == 5 || colour == 6 || colour == 8;
    const UInt8 cell = colourByte(dark ? White : Black, colour);
    for (Int line = 1; line <= 2; ++line) write(4 * colour + 1, line, "    ", cell);
    write(4 * colour + 2, 1, std::to_string(colour), cell);
  }
  return save(images / "palette.png");
}

bool drawSwatches(const std::filesystem::path& images) {
  for (UInt8 colour = 0; colour < 16; ++colour) {
    openWindow(2, 1);
    write(1, 1, "  ", colourByte(Black, colour));
    if (!save(images / ("colour-" + std::to_string(colour) + ".png"))) return false;
  }
  return true;
}

// The codes in sixteen rows of sixteen, the high hexadecimal digit left, the low one above.
bool drawCharacters(const std::filesystem::path& images) {
  openWindow(34, 17);
  for (int digit = 0; digit < 16; ++digit) {
    write(3 + 2 * digit, 1, std::string(1, HexDigits[digit]), colourByte(Grey, Black));
    write(1, 2 + digit, std::string(1, HexDigits[digit]), colourByte(Grey, Black));
  }
  for (int code = 0; code < 256; ++code) {
    rvtools::t_PrintSymbol(Window, static_cast<UInt8>(code), colourByte(White, Black),
                           3 + 2 * (code % 16), 2 + code / 16);
  }
  return save(images / "characters.png");
}

// Ten by twelve points in a checkerboard of two colours, moved by an offset of (2, 2) below
// and right of their labels: x above, and on the left the upper y of each text line.
bool drawLoResGrid(const std::filesystem::path& images) {
  openWindow(12, 7);
  rvtools::t_Graphic(Window, true);
  rvtools::t_LoResOffset(Window, 2, 2);
  for (Int x = 0; x < 10; ++x) write(3 + x, 1, std::to_string(x), colourByte(Grey, Black));
  for (Int line = 0; line < 6; ++line) {
    const std::string label = std::to_string(2 * line);
    write(3 - static_cast<Int>(label.size()), 2 + line, label, colourByte(Grey, Black));
  }
  for (Int y = 0; y < 12; ++y) {
    for (Int x = 0; x < 10; ++x) {
      rvtools::t_Color(Window, (x + y) % 2 == 0 ? Yellow : Blue);
      rvtools::t_Plot(Window, x, y);
    }
  }
  return save(images / "lores-grid.png");
}

// A plus of three points each way, plotted at the same place of four panels in lo-res modes
// 0, 1, 2 and 3.
void plotPlus() {
  rvtools::t_PlotString(Window, 0, 0, " * ");
  rvtools::t_PlotString(Window, 0, 1, "***");
  rvtools::t_PlotString(Window, 0, 2, " * ");
}

bool drawLoResModes(const std::filesystem::path& images) {
  openWindow(36, 5);
  rvtools::t_Graphic(Window, true);
  rvtools::t_Color(Window, Yellow);
  constexpr Int PanelColumns[4] = {2, 11, 20, 29};
  for (Int mode = 0; mode < 4; ++mode) {
    const Int column = PanelColumns[mode];
    write(column, 1, "mode " + std::to_string(mode), colourByte(Grey, Black));
    rvtools::Windows[Window].LoResMode = mode;
    if (mode < 3) {
      rvtools::t_LoResOffset(Window, column, 2);
    } else {
      // Quarter blocks need blank cells, and their grid has two points a column.
      for (Int line = 2; line <= 5; ++line) write(column, line, "      ", colourByte(Black, Black));
      rvtools::t_LoResOffset(Window, 2 * column, 2);
    }
    plotPlus();
  }
  rvtools::Windows[Window].LoResMode = 0;
  return save(images / "lores-modes.png");
}

// Six panels of 8 x 4 cells with their operation's name below: lines, a rectangle, a filled
// one, a circle, a filled one, and a triangle with a circle inside, the region between them
// filled.
bool drawPixelShapes(const std::filesystem::path& images) {
  openWindow(48, 5);
  constexpr const char* Labels[] = {"HLine", "HRect", "filled", "HCircle", "filled", "HFill"};
  for (Int panel = 0; panel < 6; ++panel) {
    const std::string label = Labels[panel];
    write(8 * panel + 1 + (8 - static_cast<Int>(label.size())) / 2, 5, label,
          colourByte(Grey, Black));
  }
  rvtools::t_HColor(Window, Yellow);
  constexpr Int LineEnds[][2] = {{116, 16}, {116, 64}, {116, 112}, {64, 16}, {12, 16}};
  for (const auto& [x, y] : LineEnds) rvtools::t_HLine(Window, 12, 112, x, y);
  rvtools::t_HRect(Window, 128 + 16, 24, 128 + 112, 104, false);
  rvtools::t_HColor(Window, SkyBlue);
  rvtools::t_HRect(Window, 256 + 16, 24, 256 + 112, 104, true);
  rvtools::t_HColor(Window, Yellow);
  rvtools::t_HCircle(Window, 384 + 64, 64, 46, false);
  rvtools::t_HColor(Window, Orange);
  rvtools::t_HCircle(Window, 512 + 64, 64, 46, true);
  rvtools::t_HColor(Window, White);
  rvtools::t_HLine(Window, 640 + 8, 116, 640 + 64, 12);
  rvtools::t_HLine(Window, 640 + 64, 12, 640 + 120, 116);
  rvtools::t_HLine(Window, 640 + 120, 116, 640 + 8, 116);
  rvtools::t_HCircle(Window, 640 + 64, 80, 18, false);
  rvtools::t_HColor(Window, Green);
  rvtools::t_HFill(Window, 640 + 64, 108);
  return save(images / "pixel-shapes.png");
}

// The same filled circle twice; over the second, a line of text printed across it repaints
// its cells from their glyphs, paper and all.
bool drawPixelsAndText(const std::filesystem::path& images) {
  openWindow(40, 5);
  write(7, 5, "drawn", colourByte(Grey, Black));
  write(23, 5, "then printed", colourByte(Grey, Black));
  rvtools::t_HColor(Window, Pink);
  rvtools::t_HCircle(Window, 160, 72, 56, true);
  rvtools::t_HCircle(Window, 480, 72, 56, true);
  write(25, 2, "printed", colourByte(White, Black));
  return save(images / "pixels-and-text.png");
}

// A backslash before every ASCII punctuation character keeps it literal in Markdown.
std::string markdownCell(char32_t character) {
  constexpr std::string_view Punctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  std::string cell;
  if (character == U' ') return cell;
  if (character < 0x7F && Punctuation.find(static_cast<char>(character)) != Punctuation.npos) {
    cell += '\\';
  }
  cell += rvtools::utf8Of(character);
  return cell;
}

bool writeCharacterTable(const std::filesystem::path& path) {
  std::ofstream file(path, std::ios::binary);
  file << "<!-- Written by tools/rvdocs from FontCodeCharacters; the build writes it again. -->\n"
       << "# The character set, code by code\n\n"
       << "The character that the fonts draw for each code, as Unicode: the row gives the high\n"
       << "hexadecimal digit of the code, the column the low one. Code 32 (and 160) is the\n"
       << "blank. The same table turns a screen into text for Copy Text, Save Text and the\n"
       << "terminal. [The fonts](fonts.md) shows the glyphs themselves.\n\n"
       << "|    |";
  for (int digit = 0; digit < 16; ++digit) file << ' ' << HexDigits[digit] << " |";
  file << "\n|----|";
  for (int digit = 0; digit < 16; ++digit) file << "---|";
  file << '\n';
  for (int row = 0; row < 16; ++row) {
    file << "| " << HexDigits[row] << "x |";
    for (int digit = 0; digit < 16; ++digit) {
      file << ' ' << markdownCell(rvtools::FontCodeCharacters[16 * row + digit]) << " |";
    }
    file << '\n';
  }
  return static_cast<bool>(file.flush());
}

bool drawEverything(const std::filesystem::path& folder) {
  const std::filesystem::path images = folder / "images";
  std::error_code error;
  std::filesystem::create_directories(images, error);
  return drawPalette(images) && drawSwatches(images) && drawCharacters(images) &&
         drawLoResGrid(images) && drawLoResModes(images) && drawPixelShapes(images) &&
         drawPixelsAndText(images) && writeCharacterTable(folder / "character-codes.md");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: rvdocs <folder>\n  draws the manual's pictures into <folder>\n");
    return 2;
  }
  const std::filesystem::path folder = argv[1];
  // The runtime's log would only fill the build's output; failures are reported below.
  rvtools::setLogSink([](std::string_view) {});
  std::atomic<bool> drawn = false;
  char* programOnly[] = {argv[0], nullptr};
  rvtools::runHeadless(1, programOnly, [&] {
    drawn = drawEverything(folder);
    rvtools::t_QuitProgram(Window);
  });
  return drawn ? 0 : 1;
}
