// SPDX-License-Identifier: MIT
// Font resources: LZW expansion, header checks and their log lines, the font writer's round
// trip through the loader, the two compiled fonts, and t_WindowFont's checks.
#include <cstdint>

#include "common.hpp"
#include "text/fonts.hpp"
#include "tools/font_writer.hpp"

namespace rvtools::testing {
namespace {

// A compressed data part: the width byte, then the codes packed most significant bit first.
std::vector<UInt8> codeStream(int width, const std::vector<std::uint32_t>& codes) {
  std::vector<UInt8> stream{static_cast<UInt8>(width)};
  std::uint64_t bits = 0;
  int count = 0;
  for (std::uint32_t code : codes) {
    bits = (bits << width) | code;
    for (count += width; count >= 8; count -= 8)
      stream.push_back(static_cast<UInt8>(bits >> (count - 8)));
  }
  if (count > 0) stream.push_back(static_cast<UInt8>(bits << (8 - count)));
  return stream;
}

std::string expanded(int width, const std::vector<std::uint32_t>& codes) {
  const std::vector<UInt8> bytes = expandGlyphData(codeStream(width, codes));
  return {bytes.begin(), bytes.end()};
}

// A font file with a 16-byte header: 8 x 16 glyphs of codes 32..126, size field 0x01020304,
// reserved field 0xBEEF.
std::vector<UInt8> fontFile(UInt8 format, const std::vector<UInt8>& data) {
  std::vector<UInt8> file{16, 'r', 'v', 'f', 'n', format, 1, 2, 3, 4, 32, 126, 8, 16, 0xBE, 0xEF};
  for (UInt8 byte : data) file.push_back(byte);
  return file;
}

std::vector<UInt8> dataOf(const t_Font& font) {
  return font.Data.vector();
}

// Format, size, first and last code, glyph width and height, and the reserved field.
std::vector<Int> headerOf(const t_Font& font) {
  return {font.Format, font.Size, font.Start, font.End, font.Width, font.Height, font.Reserved};
}

TEST(FontExpansion, DecodesCodesMostSignificantBitFirstAndRefusesCorruptStreams) {
  EXPECT_EQ(expanded(9, {65, 256}), "AAA");
  EXPECT_EQ(expanded(9, {65, 66, 256, 258}), "ABABABA");
  EXPECT_EQ(expanded(9, {256 + 65, 66}), "AB");  // the first code counts by its low 8 bits
  EXPECT_EQ(expanded(24, {65, 256}), "AAA");
  EXPECT_EQ(expanded(1, {1, 0, 1, 1, 0, 0, 0, 1}), std::string("\1\0\1\1\0\0\0\1", 8));
  // The four bits left over after four 9-bit codes do not make a fifth code.
  std::vector<UInt8> stream = codeStream(9, {65, 66, 67, 68});
  stream.back() |= 0x0F;
  EXPECT_EQ(expandGlyphData(stream), (std::vector<UInt8>{'A', 'B', 'C', 'D'}));
  // Corrupt streams expand to nothing.
  EXPECT_EQ(expanded(9, {65, 257}), "");  // beyond the dictionary
  EXPECT_EQ(expanded(9, {65, 66, 300}), "");
  EXPECT_EQ(expanded(0, {}), "");
  std::vector<UInt8> wide = codeStream(24, {65, 256});
  wide[0] = 25;
  EXPECT_TRUE(expandGlyphData(wide).empty());
}

// Codes 65, 256, 257, ... output strings of 1, 2, 3, ... bytes: n codes expand to
// n (n + 1) / 2 bytes, so a few thousand codes would reach any size.
std::vector<std::uint32_t> growingCodes(std::uint32_t count) {
  std::vector<std::uint32_t> codes{65};
  for (std::uint32_t k = 0; k + 1 < count; ++k) codes.push_back(256 + k);
  return codes;
}

TEST(FontExpansion, StopsBeforeExceedingTheLargestGlyphData) {
  EXPECT_EQ(expandGlyphData(codeStream(17, growingCodes(5000))).size(), 12502500u);
  EXPECT_TRUE(expandGlyphData(codeStream(17, growingCodes(5800))).empty());  // 16,822,900 bytes
  // Unchecked, this stream would ask for five billion bytes.
  EXPECT_TRUE(expandGlyphData(codeStream(17, growingCodes(100000))).empty());
}

class FontTest : public RuntimeTest {};

TEST_F(FontTest, RefusesUnreadableFilesAndBadHeaders) {
  const t_Font missing = t_LoadFontResource("No Such 8x8.font");
  EXPECT_TRUE(missing.Data.empty());
  EXPECT_EQ(missing.HeaderSize, 16);
  t_LoadFontResource("");  // the resources folder itself
  // A file of endless size is given up after 64 MiB.
  const std::string endless = "../../../../../../../../../../../../proc/self/pagemap";
  EXPECT_TRUE(t_LoadFontResource(endless).Data.empty());
  EXPECT_EQ(logLines(), (Lines{"t_LoadFontResource: Could not load file „No Such 8x8.font“",
                               "t_LoadFontResource: Could not load file „“",
                               "t_LoadFontResource: Could not load file „" + endless + "“"}));

  clearLog();
  std::vector<UInt8> file = fontFile(2, {});
  file[0] = 17;
  const t_Font tooShort = parseFontResource(file, "x");
  EXPECT_EQ(tooShort.HeaderSize, 17);
  EXPECT_EQ(tooShort.Identifier, (std::vector<UInt8>{'r', 'v', 'f', 'n'}));
  EXPECT_EQ(parseFontResource({0, 'r', 'v', 'f', 'n', 2, 0, 0, 0, 0, 0, 1, 8}, "x").Format, 0);
  file = fontFile(2, {1, 2, 3});
  file[4] = 'N';
  const t_Font foreign = parseFontResource(file, "x");
  EXPECT_EQ(foreign.Identifier, (std::vector<UInt8>{'r', 'v', 'f', 'N'}));
  EXPECT_EQ(foreign.Format, 0);
  EXPECT_TRUE(foreign.Data.empty());
  EXPECT_EQ(logLines(), (Lines{"t_LoadFontResource: Invalid header size",
                               "t_LoadFontResource: Invalid header size",
                               "t_LoadFontResource: Invalid file type"}));
}

TEST_F(FontTest, ReadsHeaderFieldsAndConvertsCompressedFormats) {
  std::vector<UInt8> file = fontFile(2, {7, 8});
  const t_Font stored = parseFontResource(file, "x");
  EXPECT_EQ(headerOf(stored), (std::vector<Int>{2, 0x01020304, 32, 126, 8, 16, 0xBEEF}));
  EXPECT_EQ(dataOf(stored), (std::vector<UInt8>{7, 8}));

  file[0] = 0;  // header size 0: the whole file is the data
  EXPECT_EQ(dataOf(parseFontResource(file, "x")), file);

  const t_Font other = parseFontResource(fontFile(7, {100, 9, 1}), "x");
  EXPECT_EQ(other.Format, 7);
  EXPECT_EQ(dataOf(other), (std::vector<UInt8>{100, 9, 1}));

  const t_Font grey = parseFontResource(fontFile(102, codeStream(9, {65, 256})), "x");
  EXPECT_EQ(grey.Format, 2);
  EXPECT_EQ(dataOf(grey), (std::vector<UInt8>{'A', 'A', 'A'}));
  const t_Font widthOnly = parseFontResource(fontFile(100, {9}), "x");
  EXPECT_EQ(widthOnly.Format, 0);
  EXPECT_TRUE(widthOnly.Data.empty());
  EXPECT_EQ(parseFontResource(fontFile(102, {}), "x").Format, 2);
  EXPECT_EQ(parseFontResource(fontFile(102, codeStream(9, {65, 999})), "x").Format, 2);
  EXPECT_TRUE(logLines().empty());
}

// Bytes of a fixed pseudo-random sequence, drawn from `alphabet` values.
std::vector<UInt8> noise(std::size_t count, unsigned alphabet) {
  std::vector<UInt8> bytes(count);
  std::uint32_t state = 12345;
  for (UInt8& byte : bytes) {
    state = state * 1103515245u + 12345u;
    byte = static_cast<UInt8>((state >> 16) % alphabet);
  }
  return bytes;
}

TEST(FontWriter, WritesFilesThatTheLoaderExpandsUnchanged) {
  const std::vector<std::vector<UInt8>> samples = {
      {}, {42}, std::vector<UInt8>(5000, 0), noise(3000, 3), noise(200000, 256)};
  for (const std::vector<UInt8>& data : samples) {
    const fontwriter::GlyphSet glyphs{0, 255, 16, 32, data};
    const t_Font font = parseFontResource(fontwriter::fontFileBytes(glyphs), "x");
    EXPECT_EQ(dataOf(font), data) << data.size() << " bytes";
    EXPECT_EQ(headerOf(font), (std::vector<Int>{2, Int(data.size()), 0, 255, 16, 32, 0}));
  }
  EXPECT_EQ(fontwriter::compressGlyphData({1, 2, 3})[0], 9);
  EXPECT_GT(fontwriter::compressGlyphData(noise(200000, 256))[0], 16);
}

// Glyph pixel (x, y) of code `code` in a 16 x 32 font.
UInt8 pixel(const t_Font& font, int code, int x, int y) {
  return font.Data[code * 512 + y * 16 + x];
}

TEST_F(FontTest, CompiledFontsHoldAllCodesWithExactBlockShapes) {
  for (const char* name : {"MenloBold 16x32.font", "MenloRegular 16x32.font"}) {
    SCOPED_TRACE(name);
    const t_Font font = t_LoadFontResource(name);
    ASSERT_EQ(font.Data.size(), 256u * 512u);
    EXPECT_EQ(headerOf(font), (std::vector<Int>{2, 256 * 512, 0, 255, 16, 32, 0}));
    for (int code = 0; code <= 14; ++code) {
      const int mask = 15 - code;  // upper left 8, upper right 4, lower left 2, lower right 1
      for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 16; ++x) {
          const int weight = (x < 8 ? 8 : 4) >> (y < 16 ? 0 : 2);
          ASSERT_EQ(pixel(font, code, x, y), (mask & weight) ? 255 : 0) << code;
        }
      }
    }
    for (int x = 0; x < 16; ++x) EXPECT_EQ(pixel(font, 156, x, 16), 255);
    EXPECT_EQ(pixel(font, 156, 8, 0), 0);
    int ink = 0;
    for (int i = 0; i < 512; ++i) ink += font.Data['A' * 512 + i] > 128 ? 1 : 0;
    EXPECT_GT(ink, 40);
  }
  EXPECT_TRUE(logLines().empty());
}

TEST_F(FontTest, WindowFontReplacesOnlyAnInitialisedWindowsFont) {
  const t_Font regular = t_LoadFontResource("MenloRegular 16x32.font");
  t_WindowFont(8, regular);
  t_WindowFont(3, regular);
  EXPECT_EQ(logLines(), (Lines{"t_WindowFont: Window is not a graphic window.",
                               "t_WindowFont: Window #3 not initialized."}));

  initTextWindow(0, 8, 4, 2);
  t_WindowFont(0, regular);
  EXPECT_EQ(Windows[0].Font.Data.identity(), regular.Data.identity());
  EXPECT_EQ(Windows[0].TextWidth, 4);
  EXPECT_TRUE(logLines().empty());
}

}  // namespace
}  // namespace rvtools::testing
