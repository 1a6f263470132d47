// Window initialisation: the allocation of graphic and text blocks, the corrections of size and
// depth, re-initialisation that moves the blocks of other windows, and the window's colours.
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
            (std::vector<std::string>{
                "t_InitWindow: GraphicWindow #0 Start.",
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
            (std::vector<std::string>{
                "t_InitWindow: GraphicWindow #0 Start.",
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
            (std::vector<std::string>{
                "t_InitWindow: GraphicWindow #2 Start.",
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
  EXPECT_EQ(
      linesStartingWith("t_InitWindow"),
      (std::vector<std::string>{
          "t_InitWindow: Window is not a graphic window.", "t_InitWindow: GraphicWindow #0 Start.",
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
  EXPECT_EQ(logLines(), (std::vector<std::string>{"t_Color: Window is not a graphic window.",
                                                  "t_ColorBorder: Window #3 not initialized."}));
}

}  // namespace
}  // namespace rvtools::testing
