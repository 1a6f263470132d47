// SPDX-License-Identifier: MIT
// Window initialisation (blocks, corrections of size and depth, re-initialisation moving the
// blocks of other windows, colours) and the window image at every depth in both byte orders.
#include <cstdint>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

class WindowTest : public RuntimeTest {
 protected:
  std::vector<std::string> linesStartingWith(const std::string& prefix) const {
    std::vector<std::string> matching;
    for (const std::string& line : logLines()) {
      if (line.starts_with(prefix)) matching.push_back(line);
    }
    return matching;
  }
  // A text-less 8-bit window of 64 x 64 pixels: 4 K of graphic memory.
  void initSmallPicture(UInt8 window) {
    t_InitWindow(window, 8, false, 64, 64, 0, 0, EmptyFont(), true);
  }
};

TEST_F(WindowTest, DemoWindowTakesItsBlocksFromTheTopOfMemory) {
  t_InitWindow(0, 24, 80, 25, 16, "MenloBold 16x32.font");
  const t_Window& w = Windows[0];
  EXPECT_EQ((std::vector<Int>{w.MemoryStart, w.MemoryEnd, w.TextMemoryStart, w.TextMemoryEnd,
                              HighMemory, w.TextWidth, w.TextHeight, w.TextColor, w.BorderWidth}),
            (std::vector<Int>{0xD12000, 0xFFFFFF, 0xD11000, 0xD11FFF, 0xD10FFF, 80, 25, 192, 16}));
  EXPECT_TRUE(w.AutoUpdate && w.QuickUpdate && w.Initialized);
  EXPECT_EQ(DefaultWindow, 0);
  EXPECT_EQ(linesStartingWith("t_InitWindow"),
            (Lines{"t_InitWindow: GraphicWindow #0 Start.",
                   "t_InitWindow: GraphicWindow #0 = 1280 x 800 pixel x 24 bit = 3000,00K "
                   "video-memory = $00D12000.",
                   "t_InitWindow: GraphicWindow #0 End."}));
  const auto frame = testHost().windowState(0);
  EXPECT_EQ(frame.Title, "RvtoolsTests");
  EXPECT_EQ(std::make_pair(frame.Frame.Width, frame.Frame.Height),
            (std::pair<Int, Int>(1312, 832)));
  EXPECT_EQ(frame.Border, (t_RGBColor{255, 84, 84, 84}));
  EXPECT_EQ(pictureBytes(0), std::vector<UInt8>(1280 * 800 * 3, 0));
}

TEST_F(WindowTest, ReinitialisationMovesTheBlocksBelowUpward) {
  initSmallPicture(0);
  initTextWindow(1, 8, 4, 1);  // 64 x 32 pixels, 2 K picture, 8 bytes of text
  const Int oldStart = Windows[1].MemoryStart, oldText = Windows[1].TextMemoryStart;
  VideoMemory[oldStart] = 0x5A;
  VideoMemory[oldText] = 'Q';
  clearLog();

  initSmallPicture(0);

  EXPECT_EQ(Windows[1].MemoryStart, oldStart + 0x1000);
  EXPECT_EQ(Windows[1].TextMemoryStart, oldText + 0x1000);
  EXPECT_EQ(VideoMemory[Windows[1].MemoryStart], 0x5A);
  EXPECT_EQ(VideoMemory[Windows[1].TextMemoryStart], 'Q');
  EXPECT_EQ(Windows[0].MemoryEnd, Windows[1].TextMemoryStart - 1);
  EXPECT_EQ(linesStartingWith("t_InitWindow: GraphicWindow #0 "),
            (Lines{"t_InitWindow: GraphicWindow #0 Start.",
                   "t_InitWindow: GraphicWindow #0 high memory = $00FFFFFF, graphic block size to "
                   "delete = $00001000.",
                   "t_InitWindow: GraphicWindow #0 moving graphic block for win #1$00FFE000..."
                   "00FFEFFF to00FFF000...00FFFFFF",
                   "t_InitWindow: GraphicWindow #0 moving text block for win #1$00FFD400..."
                   "00FFDFFF to$00FFE400...00FFEFFF",
                   "t_InitWindow: GraphicWindow #0 = 64 x 64 pixel x 8 bit = 4,00K video-memory = "
                   "$00FFD400.",
                   "t_InitWindow: GraphicWindow #0 End."}));
}

TEST_F(WindowTest, SizeAndDepthAreCorrected) {
  t_InitWindow(0, 4, false, 33, 32, 0, 0, EmptyFont(), true);
  EXPECT_EQ(Windows[0].Width, 32);
  t_InitWindow(0, 4, false, 35, 32, 0, 0, EmptyFont(), true);
  EXPECT_EQ(Windows[0].Width, 36);
  t_InitWindow(0, 1, false, 33, 32, 0, 0, EmptyFont(), true);
  EXPECT_EQ(Windows[0].Width, 40);
  clearLog();
  t_InitWindow(2, 24, false, 20, 9000, 0, 0, EmptyFont(), true);
  EXPECT_EQ(Windows[2].Width, 1280);
  EXPECT_EQ(Windows[2].Height, 800);
  t_InitWindow(3, 2, false, 31, 64, 0, 0, EmptyFont(), true);
  EXPECT_FALSE(Windows[3].Initialized);
  EXPECT_EQ(linesStartingWith("t_InitWindow: GraphicWindow #"),
            (Lines{"t_InitWindow: GraphicWindow #2 Start.",
                   "t_InitWindow: GraphicWindow #2 cannot display 20 horizontal pixel.",
                   "t_InitWindow: GraphicWindow #2 cannot display 9000 vertical pixel.",
                   "t_InitWindow: GraphicWindow #2 = 1280 x 800 pixel x 24 bit = 3000,00K "
                   "video-memory = $00D11400.",
                   "t_InitWindow: GraphicWindow #2 End.", "t_InitWindow: GraphicWindow #3 Start.",
                   "t_InitWindow: GraphicWindow #3 cannot display 31 horizontal pixel.",
                   "t_InitWindow: GraphicWindow #3 unsupported 2 bit depth."}));
}

TEST_F(WindowTest, RefusalsLeaveTheRecordAndMemoryAlone) {
  t_InitWindow(8, 24, false, 64, 64, 0, 0, EmptyFont(), true);
  t_InitWindow(0, 32, false, 8192, 8192, 0, 0, EmptyFont(), true);
  t_InitWindow(1, 24, 80, 25, 0, "Missing.font");
  EXPECT_FALSE(Windows[0].Initialized);
  EXPECT_EQ(Windows[0].MemoryStart, -1);
  EXPECT_EQ(HighMemory, 0xFFFFFF);
  EXPECT_EQ(linesStartingWith("t_InitWindow"),
            (Lines{"t_InitWindow: Window is not a graphic window.",
                   "t_InitWindow: GraphicWindow #0 Start.",
                   "t_InitWindow: GraphicWindow #0 has not enough graphic-video-memory (16319K "
                   "available).",
                   "t_InitWindow: Displaying 8192 x 8192 pixel x 32 bit needs 262144,00K "
                   "video-memory.",
                   "t_InitWindow: Font 'Missing.font' not found."}));
}

TEST_F(WindowTest, WindowWithoutFontOrViewIsMarkedSo) {
  t_InitWindow(4, 32, false, 32, 32, 0, 0, EmptyFont(), false);
  EXPECT_EQ(Windows[4].TextWidth, -1);
  EXPECT_EQ(Windows[4].TextMemoryStart, -1);
  EXPECT_EQ(testHost().windowState(4).Title, "RvtoolsTests-Grafik");
  EXPECT_FALSE(testHost().windowState(4).TitleVisible);
  EXPECT_EQ(VideoMemory[Windows[4].MemoryStart], 255);  // opaque black at 32 bits
  EXPECT_EQ(VideoMemory[Windows[4].MemoryStart + 1], 0);

  testHost().setViewPresent(5, false);
  initSmallPicture(5);
  EXPECT_FALSE(Windows[5].Initialized);
  EXPECT_NE(Windows[5].MemoryStart, -1);  // the block stays taken
  EXPECT_EQ(linesStartingWith("t_InitWindow: GraphicWindow #5 could").size(), 1u);
}

TEST_F(WindowTest, ColoursTakeTheLowBitsOfTheColourNumber) {
  initSmallPicture(0);
  t_Color(0, 1);
  EXPECT_EQ(Windows[0].TextColor, 16);  // 192 keeps its background 0
  t_Color(0, 17);
  EXPECT_EQ(Windows[0].RGBColor, (t_RGBColor{255, 255, 0, 0}));
  t_Color(0, 16);
  EXPECT_EQ(Windows[0].TextColor, 0);
  EXPECT_EQ(Windows[0].RGBColor, (t_RGBColor{255, 0, 0, 0}));
  t_ColorBorder(0, 22);
  EXPECT_EQ(testHost().windowState(0).Border, (t_RGBColor{255, 0, 0, 255}));
  clearLog();
  t_Color(9, 1);
  t_ColorBorder(3, 1);
  EXPECT_EQ(logLines(), (Lines{"t_Color: Window is not a graphic window.",
                               "t_ColorBorder: Window #3 not initialized."}));
}

class ImageTest : public RuntimeTest {
 protected:
  // Window 0 of width x height pixels at `depth`, without text, visible.
  void initPicture(Int depth, Int width = 32, Int height = 32) {
    t_InitWindow(0, depth, false, width, height, 0, 0, EmptyFont(), true);
    ASSERT_TRUE(Windows[0].Initialized);
    Windows[0].Visible = true;
    clearLog();
  }
  UInt8* memory() const { return &VideoMemory[Windows[0].MemoryStart]; }
};

// The colour of pixel (x, y) read straight from graphic memory, one pixel at a time.
std::vector<UInt8> expectedPixel(const UInt8* m, Int depth, Int width, Int x, Int y) {
  const Int p = y * width + x;
  const auto palette = [](int n) {
    return std::vector<UInt8>{255, PaletteRed[n], PaletteGreen[n], PaletteBlue[n]};
  };
  switch (depth) {
    case 1:
      return palette((m[p / 8] >> (7 - x % 8)) & 1 ? 15 : 0);
    case 4:
      return palette(x % 2 == 0 ? m[p / 2] >> 4 : m[p / 2] & 15);
    case 8:
      return {255, m[p], m[p], m[p]};
    case 16:
      return {255, m[2 * p + 1], m[2 * p + 1], m[2 * p + 1]};
    case 24:
      return {255, m[3 * p], m[3 * p + 1], m[3 * p + 2]};
    default:
      return {255, m[4 * p + 1], m[4 * p + 2], m[4 * p + 3]};
  }
}

TEST_F(ImageTest, EveryDepthAndWidthMatchesThePixelByPixelConversion) {
  // Odd widths and sizes leave pixels after the last whole step of a fast path; widths that
  // are no multiple of a byte's pixels make rows start inside a byte.
  const std::vector<std::tuple<Int, Int, Int>> pictures = {
      {1, 40, 33},  {1, 36, 33},  {4, 36, 33},  {4, 33, 33}, {8, 33, 33},
      {16, 33, 35}, {24, 33, 33}, {24, 32, 33}, {32, 33, 33}};
  for (const auto& [depth, width, height] : pictures) {
    initPicture(depth, width < 40 ? 40 : width, height);
    Windows[0].Width = width;  // depths 1 and 4 round a width up when initialised
    for (Int a = Windows[0].MemoryStart; a <= Windows[0].MemoryEnd; ++a) {
      VideoMemory[a] = static_cast<UInt8>(a * 151 + (a >> 7));
    }
    const std::optional<t_Image> image = t_WindowImage(0);
    ASSERT_TRUE(image.has_value());
    ASSERT_EQ((std::vector<Int>{image->Width, image->Height, Int(image->Pixels.size())}),
              (std::vector<Int>{width, height, width * height * 4}));
    std::vector<UInt8> expected;
    for (Int y = 0; y < height; ++y) {
      for (Int x = 0; x < width; ++x) {
        const std::vector<UInt8> pixel = expectedPixel(memory(), depth, width, x, y);
        expected.insert(expected.end(), pixel.begin(), pixel.end());
      }
    }
    EXPECT_EQ(image->Pixels, expected) << depth << " bits, " << width << " x " << height;
    // The native order holds each pixel as the 32-bit word 0xAARRGGBB.
    std::vector<std::uint32_t> words(expected.size() / 4), wanted;
    ASSERT_TRUE(t_WindowImageInto(0, reinterpret_cast<UInt8*>(words.data()), expected.size(),
                                  PixelOrder::NativeArgb32));
    for (std::size_t p = 0; p < expected.size(); p += 4) {
      wanted.push_back(std::uint32_t{expected[p]} << 24 | expected[p + 1] << 16 |
                       expected[p + 2] << 8 | expected[p + 3]);
    }
    EXPECT_TRUE(words == wanted) << depth << " bits, " << width << " x " << height;
  }
  EXPECT_TRUE(logLines().empty());
}

TEST_F(ImageTest, WindowsThatCannotBeShown) {
  initPicture(24);
  Windows[0].Visible = false;
  EXPECT_FALSE(t_WindowImage(0).has_value());
  EXPECT_TRUE(logLines().empty());

  Windows[0].Visible = true;
  std::vector<UInt8> small(32 * 32 * 4 - 1);
  EXPECT_FALSE(t_WindowImageInto(0, small.data(), small.size(), PixelOrder::AlphaRedGreenBlue));
  EXPECT_FALSE(t_WindowImage(2).has_value());
  EXPECT_FALSE(t_WindowImage(9).has_value());
  EXPECT_EQ(logLines(),
            (Lines{"t_WindowImage: Data could not be collected, image could not be created.",
                   "t_WindowImage: Graphic window #2 not initialized.",
                   "t_WindowImage: Graphic window #9 not initialized."}));

  clearLog();
  Windows[0].BitDepth = 7;  // one line for every pixel
  EXPECT_FALSE(t_WindowImage(0).has_value());
  EXPECT_EQ(logLines(), Lines(32 * 32, "t_WindowImage: Illegal bit depth."));

  clearLog();
  MemoryInitialized = false;
  EXPECT_FALSE(t_WindowImage(2).has_value());
  EXPECT_TRUE(logLines().empty());
}

}  // namespace
}  // namespace rvtools::testing
