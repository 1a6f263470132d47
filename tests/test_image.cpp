// Window image composition: the pixels of every depth in both byte orders, checked against a
// pixel-by-pixel conversion, the refusals and their messages, and the refresh statistics.
#include <cstdint>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

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
            (std::vector<std::string>{
                "t_WindowImage: Data could not be collected, image could not be created.",
                "t_WindowImage: Graphic window #2 not initialized.",
                "t_WindowImage: Graphic window #9 not initialized."}));

  clearLog();
  Windows[0].BitDepth = 7;  // one line for every pixel
  EXPECT_FALSE(t_WindowImage(0).has_value());
  EXPECT_EQ(logLines(), std::vector<std::string>(32 * 32, "t_WindowImage: Illegal bit depth."));

  clearLog();
  MemoryInitialized = false;
  EXPECT_FALSE(t_WindowImage(2).has_value());
  EXPECT_TRUE(logLines().empty());
}

TEST_F(ImageTest, CompositionRecordsItsDurationAndFinish) {
  initPicture(32);
  Windows[0].UpdateDuration = -1;
  Windows[0].UpdateFinished = 0;
  const double before = host().absoluteTime() * 1000.0;
  ASSERT_TRUE(t_WindowImage(0).has_value());
  const double after = host().absoluteTime() * 1000.0;
  EXPECT_GE(Windows[0].UpdateDuration, 0);
  EXPECT_LE(Windows[0].UpdateDuration, static_cast<Int>((after - before) * 1000.0) + 1);
  EXPECT_GE(Windows[0].UpdateFinished, static_cast<Int>(before));
  EXPECT_LE(Windows[0].UpdateFinished, static_cast<Int>(after));
}

}  // namespace
}  // namespace rvtools::testing
