// SPDX-License-Identifier: MIT
// Pixel graphics: the exact pixels of lines, rectangles, circles and fills on small pictures,
// lines and circles cut to the picture against walks of the whole shape, every operation at
// every depth against glyphs and the window image, hostile coordinates, the cells that hold
// pixel drawings, and refusals.
#include <climits>
#include <functional>
#include <random>
#include <set>

#include "common.hpp"

namespace rvtools::testing {
namespace {

constexpr Int Far = Int{1} << 62;

class PixelsTest : public RuntimeTest {
 protected:
  // Window `window`, a picture of 32 x 32 pixels without text.
  void initPicture(UInt8 window, Int depth = 24) {
    t_InitWindow(window, depth, false, 32, 32, 0, 0, EmptyFont(), true);
    ASSERT_TRUE(Windows[window].Initialized);
    clearLog();
  }
  // Blacks out window 0's picture and takes the pen `pen`.
  static void blackOut(Int pen = 15) {
    t_HColor(0, 0);
    t_HRect(0, 0, 0, 31, 31, true);
    t_HColor(0, pen);
  }
};

// The pixels of the window's picture that show anything but black, as (x, y).
std::set<Position> litPixels(UInt8 window) {
  std::set<Position> lit;
  for (Int y = 0; y < Windows[window].Height; ++y) {
    for (Int x = 0; x < Windows[window].Width; ++x) {
      if (t_HPixel(window, x, y) != 0) lit.insert({x, y});
    }
  }
  return lit;
}

// The picture's top left `width` x `height` pixels, '#' lit and '.' black.
Lines art(UInt8 window, Int width, Int height) {
  Lines rows;
  for (Int y = 0; y < height; ++y) {
    std::string row;
    for (Int x = 0; x < width; ++x) row += t_HPixel(window, x, y) != 0 ? '#' : '.';
    rows.push_back(row);
  }
  return rows;
}

// The bits that store pixel (x, y) in memory, every byte of it at depths 16 and 32.
std::uint32_t storedBits(UInt8 window, Int x, Int y) {
  const t_Window& record = Windows[window];
  const Int depth = record.BitDepth, p = y * record.Width + x;
  const UInt8* memory = VideoMemory.data() + record.MemoryStart;
  if (depth < 8) {
    const Int bit = p * depth;
    return (memory[bit / 8] >> (8 - depth - bit % 8)) & ((1 << depth) - 1);
  }
  std::uint32_t bits = 0;
  for (Int b = 0; b < depth / 8; ++b) bits = bits << 8 | memory[p * depth / 8 + b];
  return bits;
}

// Wikipedia's plotLine: Bresenham's walk from the end with the lesser major coordinate.
std::set<Position> walkedLine(Int x0, Int y0, Int x1, Int y1) {
  std::set<Position> pixels;
  const bool steep = std::abs(y1 - y0) > std::abs(x1 - x0);
  if (steep) std::swap(x0, y0), std::swap(x1, y1);
  if (x0 > x1) std::swap(x0, x1), std::swap(y0, y1);
  const Int dx = x1 - x0, dy = std::abs(y1 - y0), step = y1 >= y0 ? 1 : -1;
  Int d = 2 * dy - dx;
  for (Int x = x0, y = y0; x <= x1; ++x) {
    pixels.insert(steep ? Position{y, x} : Position{x, y});
    if (d > 0) y += step, d -= 2 * dx;
    d += 2 * dy;
  }
  return pixels;
}

// The midpoint circle's walk over its octant, mirrored into the other seven.
std::set<Position> walkedCircle(Int cx, Int cy, Int r) {
  std::set<Position> pixels;
  for (Int x = r, y = 0, d = 1 - r; x >= y;) {
    for (const auto& [dx, dy] : {Position{x, y}, {y, x}}) {
      for (const Int sx : {-1, 1}) {
        for (const Int sy : {-1, 1}) pixels.insert({cx + sx * dx, cy + sy * dy});
      }
    }
    ++y;
    if (d < 0) {
      d += 2 * y + 1;
    } else {
      --x;
      d += 2 * (y - x) + 1;
    }
  }
  return pixels;
}

std::set<Position> insidePicture(const std::set<Position>& pixels) {
  std::set<Position> inside;
  for (const auto& [x, y] : pixels) {
    if (x >= 0 && y >= 0 && x < 32 && y < 32) inside.insert({x, y});
  }
  return inside;
}

TEST_F(PixelsTest, LinesAreBresenhamsWalkTheSameFromEitherEnd) {
  initPicture(0);
  const auto line = [](Int x1, Int y1, Int x2, Int y2) {
    blackOut();
    t_HLine(0, x1, y1, x2, y2);
    const Lines forward = art(0, 7, 6);
    blackOut();
    t_HLine(0, x2, y2, x1, y1);
    EXPECT_EQ(art(0, 7, 6), forward) << "drawn backward";
    return forward;
  };
  // A shallow line rounds every column to the nearer row, a half toward its left end's row.
  EXPECT_EQ(line(0, 0, 5, 2),
            (Lines{"##.....", "..##...", "....##.", ".......", ".......", "......."}));
  EXPECT_EQ(line(0, 0, 4, 1),
            (Lines{"###....", "...##..", ".......", ".......", ".......", "......."}));
  // A steep line rising to the right steps a column every other row.
  EXPECT_EQ(line(1, 5, 3, 0),
            (Lines{"...#...", "...#...", "..#....", "..#....", ".#.....", ".#....."}));
  // A diagonal takes a step on both axes every pixel; a line of one point is one pixel.
  EXPECT_EQ(line(4, 0, 0, 4),
            (Lines{"....#..", "...#...", "..#....", ".#.....", "#......", "......."}));
  EXPECT_EQ(line(6, 5, 6, 5),
            (Lines{".......", ".......", ".......", ".......", ".......", "......#"}));
}

TEST_F(PixelsTest, CutLinesKeepThePixelsOfTheWholeWalk) {
  initPicture(0);
  std::mt19937_64 random(7);
  std::uniform_int_distribution<Int> coordinate(-90, 120);
  for (int n = 0; n < 400; ++n) {
    const Int x1 = coordinate(random), y1 = coordinate(random);
    const Int x2 = coordinate(random), y2 = coordinate(random);
    blackOut();
    t_HLine(0, x1, y1, x2, y2);
    ASSERT_EQ(litPixels(0), insidePicture(walkedLine(x1, y1, x2, y2)))
        << x1 << "," << y1 << " to " << x2 << "," << y2;
  }
  // Ends at the edges of the Int range: the diagonal through (0, 0), and the line of slope one
  // half through (0, 0), whose pixels are (x, x / 2).
  blackOut();
  t_HLine(0, LLONG_MIN, LLONG_MIN, LLONG_MAX, LLONG_MAX);
  t_HLine(0, Far, Far / 2, -Far, -Far / 2);
  std::set<Position> expected;
  for (Int x = 0; x < 32; ++x) expected.insert({x, x}), expected.insert({x, x / 2});
  EXPECT_EQ(litPixels(0), expected);
}

TEST_F(PixelsTest, RectanglesIncludeTheirCornersInAnyOrder) {
  initPicture(0);
  // An outline one pixel wide, corners given bottom right first.
  t_HRect(0, 4, 3, 1, 1, false);
  // A filled 2 x 2, corners given top right first, and a rectangle cut at the left edge: its
  // left side lies outside, its top, bottom and right sides inside.
  t_HRect(0, 6, 0, 5, 1, true);
  t_HRect(0, -3, 5, 2, 7, false);
  EXPECT_EQ(art(0, 7, 8), (Lines{".....##", ".######", ".#..#..", ".####..", ".......", "###....",
                                 "..#....", "###...."}));
}

TEST_F(PixelsTest, CirclesAreTheMidpointWalkCutToThePicture) {
  initPicture(0);
  // Radius 3: four pixels on each axis, the midpoint walk's corners between.
  t_HCircle(0, 3, 3, 3, false);
  t_HCircle(0, 10, 3, 0, false);  // radius 0 is one pixel
  t_HCircle(0, 20, 3, -1, true);  // a negative radius draws nothing
  EXPECT_EQ(art(0, 11, 7), (Lines{"..###......", ".#...#.....", "#.....#....", "#.....#...#",
                                  "#.....#....", ".#...#.....", "..###......"}));
  // The filled circle fills each row of the outline from its leftmost to its rightmost pixel.
  t_HCircle(0, 3, 12, 3, true);
  EXPECT_EQ(art(0, 7, 16)[9], "..###..");
  EXPECT_EQ(art(0, 7, 16)[12], "#######");

  // Every radius against the walk, centres inside and outside the picture.
  for (const auto& [cx, cy] : {Position{16, 16}, {-5, 9}, {40, 30}, {3, -20}}) {
    for (Int r = 1; r <= 45; ++r) {
      blackOut();
      t_HCircle(0, cx, cy, r, false);
      ASSERT_EQ(litPixels(0), insidePicture(walkedCircle(cx, cy, r)))
          << cx << "," << cy << " r " << r;
    }
  }
}

TEST_F(PixelsTest, FillsTakeTheFourConnectedRegion) {
  initPicture(0);
  // Filling the inside of a circle's outline gives the filled circle: the outline's diagonal
  // steps hold a fill that goes only across and down.
  t_HCircle(0, 16, 16, 10, false);
  t_HFill(0, 16, 16);
  const std::set<Position> filledRing = litPixels(0);
  blackOut();
  t_HCircle(0, 16, 16, 10, true);
  EXPECT_EQ(litPixels(0), filledRing);

  // A spiral of walls one pixel apart leaves one corridor that winds to the middle; filled from
  // either end, it takes every pixel but the walls'.
  std::vector<Position> corners{{0, 1}};
  for (Int low = 1, high = 30; low + 4 <= high; low += 2, high -= 2) {
    corners.insert(corners.end(), {{high, low}, {high, high}, {low, high}, {low, low + 2}});
  }
  for (const Position& seed : {Position{0, 0}, Position{15, 16}}) {
    blackOut(5);
    for (std::size_t i = 1; i < corners.size(); ++i) {
      t_HLine(0, corners[i - 1].first, corners[i - 1].second, corners[i].first, corners[i].second);
    }
    const std::set<Position> walls = litPixels(0);
    t_HColor(0, 12);
    t_HFill(0, seed.first, seed.second);
    Int corridor = 0;
    for (Int y = 0; y < 32; ++y) {
      for (Int x = 0; x < 32; ++x) {
        const Int shown = t_HPixel(0, x, y);
        if (walls.contains({x, y})) {
          EXPECT_EQ(shown, 0x545454);
        } else {
          corridor += shown == 0x00FF00;
        }
      }
    }
    EXPECT_EQ(corridor, 32 * 32 - static_cast<Int>(walls.size())) << "from " << seed.first;
  }

  // A region already in the pen's value is left at once, the picture's version kept.
  const std::uint64_t version = pictureVersion(0);
  t_HFill(0, 0, 0);
  EXPECT_EQ(pictureVersion(0), version);
}

// What each depth stores for the pen (200, 100, 50): its mean brightness 116 is below half,
// its nearest palette colour is 9 (orange).
struct DepthCase {
  Int depth;
  Int rgbShown;
};
const DepthCase DepthCases[] = {{1, 0x000000},  {4, 0xFF8000},  {8, 0x747474},
                                {16, 0x747474}, {24, 0xC86432}, {32, 0xC86432}};

TEST_F(PixelsTest, EveryOperationAtEveryDepthStoresThePenAsAGlyphPixel) {
  for (const DepthCase& depth : DepthCases) {
    SCOPED_TRACE(depth.depth);
    initTextWindow(0, depth.depth, 4, 2);  // 64 x 64 pixels, cells of 16 x 32
    t_WindowFront(0);

    // The pen lands as a glyph pixel of full ink: a cell filled in pen colour 14 next to a
    // printed 'W' of ink 14 holds the same bits wherever the glyph is fully inked.
    t_PrintSymbol(0, 'W', 0xE0, 1, 1);
    const std::vector<UInt8> textBlock(VideoMemory.begin() + Windows[0].TextMemoryStart,
                                       VideoMemory.begin() + Windows[0].TextMemoryEnd + 1);
    t_HColor(0, 14);
    t_HRect(0, 16, 0, 31, 31, true);
    const UInt8* glyph = Windows[0].Font.Data.data() + 'W' * 16 * 32;
    Int fullyInked = 0;
    for (Int p = 0; p < 16 * 32; ++p) {
      if (glyph[p] != 255) continue;
      ++fullyInked;
      ASSERT_EQ(storedBits(0, p % 16, p / 16), storedBits(0, 16 + p % 16, p / 16));
    }
    EXPECT_GT(fullyInked, 0);
    // The ink of text drawn on black in the pen is the printed text's: 'W' again at (32, 0).
    t_HColor(0, 0);
    t_HRect(0, 32, 0, 47, 31, true);
    t_HColor(0, 14);
    t_HText(0, 32, 0, "W");
    for (Int p = 0; p < 16 * 32; ++p) {
      ASSERT_EQ(storedBits(0, p % 16, p / 16), storedBits(0, 32 + p % 16, p / 16)) << p;
    }

    // An RGB pen, and a scene of every operation; the 16-bit pixel's first byte and the 32-bit
    // pixel's alpha stay as they were.
    t_HColorRGB(0, 200, 100, 50);
    t_HPlot(0, 50, 40);
    EXPECT_EQ(t_HPixel(0, 50, 40), depth.rgbShown);
    if (depth.depth == 16 || depth.depth == 32) {
      EXPECT_EQ(storedBits(0, 50, 40) >> (depth.depth - 8), depth.depth == 16 ? 0u : 255u);
    }
    t_HLine(0, 48, 33, 63, 45);
    t_HCircle(0, 56, 52, 6, false);
    t_HColor(0, 3);
    t_HFill(0, 56, 52);
    t_HRect(0, 0, 40, 20, 60, false);
    t_HText(0, 2, 36, "Ab");
    t_HColor(0, 9);
    t_HFill(0, 40, 62);

    // Reading back: t_HPixel and t_HGet show what t_WindowImage shows.
    const std::optional<t_Image> image = t_WindowImage(0);
    ASSERT_TRUE(image);
    for (Int p = 0; p < 64 * 64; ++p) {
      const UInt8* argb = image->Pixels.data() + 4 * p;
      ASSERT_EQ(t_HPixel(0, p % 64, p / 64), argb[1] << 16 | argb[2] << 8 | argb[3]) << p;
    }
    const t_Image whole = t_HGet(0, 0, 0, 64, 64);
    EXPECT_EQ(whole.Pixels, image->Pixels);

    // t_HPut of what t_HGet read stores the same bits again: the rectangle at (40, 30) put at
    // (0, 0), without the pixels given alpha 0.
    t_Image piece = t_HGet(0, 40, 30, 24, 34);
    ASSERT_EQ(std::make_pair(piece.Width, piece.Height), (std::pair<Int, Int>(24, 34)));
    piece.Pixels[0] = 0;
    const std::uint32_t keptCorner = storedBits(0, 0, 0);
    t_HPut(0, 0, 0, piece);
    EXPECT_EQ(storedBits(0, 0, 0), keptCorner);
    for (Int p = 1; p < 24 * 34; ++p) {
      ASSERT_EQ(t_HPixel(0, p % 24, p / 24), t_HPixel(0, 40 + p % 24, 30 + p / 24)) << p;
    }

    // Pixel operations leave text memory alone.
    EXPECT_TRUE(std::equal(textBlock.begin(), textBlock.end(),
                           VideoMemory.begin() + Windows[0].TextMemoryStart));
  }
}

TEST_F(PixelsTest, FillsCompareTheBitsThePenWrites) {
  // At 16 bits a fill compares the second byte, at 32 bits red, green and blue: pixels that
  // differ in the first byte alone are one region.
  for (const Int depth : {16, 32}) {
    initPicture(0, depth);
    VideoMemory[Windows[0].MemoryStart + depth / 8 * 5] = 0x77;  // pixel (5, 0), first byte
    t_HFill(0, 0, 0);
    EXPECT_EQ(t_HPixel(0, 31, 31), 0xFFFFFF);
    EXPECT_EQ(t_HPixel(0, 5, 0), 0xFFFFFF);
  }
}

TEST_F(PixelsTest, HostileCoordinatesCostOnlyThePixelsInside) {
  initTextWindow(0, 24, 2, 1);  // 32 x 32 pixels, for text
  initPicture(1);
  const std::vector<UInt8> before = VideoMemory;
  const std::uint64_t version = pictureVersion(0);
  const t_Image image{2, 2, std::vector<UInt8>(16, 255)};
  // Shapes that miss the picture, however large.
  t_HPlot(0, LLONG_MIN, 0);
  t_HLine(0, LLONG_MIN, LLONG_MIN, -1, LLONG_MAX);
  t_HLine(0, 32, LLONG_MIN, LLONG_MAX, LLONG_MAX);
  t_HLine(0, -Far, -1, Far, -1);
  t_HRect(0, -Far, -Far, Far, Far, false);
  t_HCircle(0, 0, 0, LLONG_MAX, false);
  t_HCircle(0, LLONG_MIN, LLONG_MIN, LLONG_MAX, true);
  t_HFill(0, 32, 0);
  t_HText(0, LLONG_MAX, 0, "far");
  t_HText(0, LLONG_MIN, LLONG_MIN, "far");
  t_HPut(0, LLONG_MAX, LLONG_MAX, image);
  t_HPut(0, LLONG_MIN, -1, image);
  EXPECT_EQ(t_HGet(0, LLONG_MIN, LLONG_MIN, LLONG_MAX, LLONG_MAX).Pixels.size(), 0u);
  EXPECT_EQ(t_HGet(0, 0, 0, -1, 5).Width, 0);
  EXPECT_EQ(t_HPixel(0, LLONG_MAX, 0), -1);
  EXPECT_EQ(VideoMemory, before);
  EXPECT_EQ(pictureVersion(0), version);

  // Shapes that cross it, in a pen whose parts are clamped to (255, 0, 50): the arc of a circle
  // of radius 2^62 whose leftmost point is (0, 16) is column 0; a filled one covers every pixel.
  t_HColorRGB(0, LLONG_MAX, LLONG_MIN, 50);
  t_HCircle(0, Far, 16, Far, false);
  EXPECT_EQ(t_HPixel(0, 0, 0), 0xFF0032);
  EXPECT_EQ(art(0, 3, 32), Lines(32, "#.."));
  t_HCircle(0, Far, Far, LLONG_MAX, true);
  EXPECT_EQ(litPixels(0).size(), 32u * 32u);
  const t_Image whole = t_HGet(0, -Far, -Far, LLONG_MAX, LLONG_MAX);
  EXPECT_EQ(std::make_pair(whole.Width, whole.Height), (std::pair<Int, Int>(32, 32)));
  EXPECT_TRUE(std::equal(VideoMemory.begin() + Windows[0].MemoryEnd + 1, VideoMemory.end(),
                         before.begin() + Windows[0].MemoryEnd + 1));
  EXPECT_TRUE(std::equal(VideoMemory.begin(), VideoMemory.begin() + Windows[0].MemoryStart,
                         before.begin()));
  EXPECT_TRUE(logLines().empty());
}

TEST_F(PixelsTest, CellsHoldingPixelDrawingsAreMarkedUntilAGlyphIsDrawn) {
  initTextWindow(0, 24, 4, 2);  // cells of 16 x 32 pixels
  t_Print(0, "\f");
  const std::string text = screenText(0), colours = screenColors(0);
  const WindowView view(0);
  const auto cells = [&view] {
    std::string flags;
    for (const bool cell : view.pixelCells()) flags += cell ? '1' : '0';
    return flags;
  };
  EXPECT_EQ(cells(), "00000000");
  t_HLine(0, 0, 0, 40, 10);  // columns 0..40 of line 0: cells 1, 2 and 3
  t_HPlot(0, 63, 63);        // the last cell
  EXPECT_EQ(cells(), "11100001");
  t_PrintSymbol(0, 'A', 0xC0, 2, 1);
  EXPECT_EQ(cells(), "10100001");
  // A scroll moves the marks with the pixels, and blanks the freed line's cells.
  t_Print(0, "\x17");  // code 23 scrolls the text area up
  EXPECT_EQ(cells(), "00010000");
  EXPECT_EQ(t_HPixel(0, 63, 31), 0xFFFFFF);
  // Pixel operations leave text memory alone; t_InitWindow starts afresh with pen colour 15.
  t_Print(0, "\f");
  t_HColor(0, 4);
  t_HRect(0, 0, 0, 63, 63, true);
  EXPECT_EQ(screenText(0), text);
  EXPECT_EQ(screenColors(0), colours);
  initTextWindow(0, 24, 4, 2);
  EXPECT_EQ(cells(), "00000000");
  t_HPlot(0, 0, 0);
  EXPECT_EQ(t_HPixel(0, 0, 0), 0xFFFFFF);
  // A window without text has no cells.
  initPicture(1);
  t_HPlot(1, 0, 0);
  EXPECT_TRUE(WindowView(1).pixelCells().empty());
}

TEST_F(PixelsTest, RefusalsNameTheOperation) {
  const t_Image image{1, 1, {255, 1, 2, 3}};
  const std::vector<std::pair<std::string, std::function<void(UInt8)>>> operations{
      {"t_HColor", [](UInt8 w) { t_HColor(w, 1); }},
      {"t_HColorRGB", [](UInt8 w) { t_HColorRGB(w, 1, 2, 3); }},
      {"t_HPlot", [](UInt8 w) { t_HPlot(w, 0, 0); }},
      {"t_HLine", [](UInt8 w) { t_HLine(w, 0, 0, 1, 1); }},
      {"t_HRect", [](UInt8 w) { t_HRect(w, 0, 0, 1, 1, true); }},
      {"t_HCircle", [](UInt8 w) { t_HCircle(w, 5, 5, 2, false); }},
      {"t_HFill", [](UInt8 w) { t_HFill(w, 0, 0); }},
      {"t_HPixel", [](UInt8 w) { EXPECT_EQ(t_HPixel(w, 0, 0), -1); }},
      {"t_HText", [](UInt8 w) { t_HText(w, 0, 0, "a"); }},
      {"t_HGet", [](UInt8 w) { EXPECT_EQ(t_HGet(w, 0, 0, 1, 1).Width, 0); }},
      {"t_HPut", [&image](UInt8 w) { t_HPut(w, 0, 0, image); }},
  };
  for (const auto& [name, operation] : operations) {
    clearLog();
    operation(8);
    operation(3);
    EXPECT_EQ(logLines(), (Lines{name + ": Window is not a graphic window.",
                                 name + ": Window #3 not initialized."}));
  }
  initPicture(0);
  t_HText(0, 0, 0, "a");
  t_HPut(0, 0, 0, t_Image{2, 3, std::vector<UInt8>(20)});
  t_HPut(0, 0, 0, t_Image{-1, -4, std::vector<UInt8>(16)});
  EXPECT_EQ(logLines(), (Lines{"t_HText: Window #0 has no text font.",
                               "t_HPut: Image of 2 x 3 pixels has 20 bytes.",
                               "t_HPut: Image of -1 x -4 pixels has 16 bytes."}));
  EXPECT_EQ(litPixels(0).size(), 0u);
}

}  // namespace
}  // namespace rvtools::testing
