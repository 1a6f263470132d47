// Glyph rendering: the pixels of one cell at each depth, the text memory it records, inverse
// video, redirection and the refusals.
#include <limits>

#include "common.hpp"

namespace rvtools::testing {
namespace {

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
  EXPECT_EQ(logLines(),
            (std::vector<std::string>{"t_PrintSymbol: Font format must be uncompressed grey for "
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
  EXPECT_EQ(logLines(), (std::vector<std::string>{
                            "t_PrintSymbol: Window #0 illegal coordinates (x = 5, y = 1).",
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
