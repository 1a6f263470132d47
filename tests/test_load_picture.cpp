// SPDX-License-Identifier: MIT
// Pictures read from PNG files: every colour type and bit depth written with libpng, and files
// that are missing, cut short, no PNG or too large for their pictures. t_SavePicture's files
// are read back in test_record.cpp.
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "common.hpp"
#include "rvtools/picture.hpp"

namespace rvtools::testing {
namespace {

struct Format {
  int ColorType;
  int Depth;
  bool Transparency = false;  // a tRNS chunk: the palette's alphas, or pixel 0's colour as key
  int Interlace = PNG_INTERLACE_NONE;
};

bool hasAlpha(const Format& format) {
  return (format.ColorType & PNG_COLOR_MASK_ALPHA) != 0;
}

// A 7 x 5 picture, so that packed rows and interlace passes end part way, in colours that
// `format` holds exactly.
t_Image pictureIn(const Format& format) {
  const int levels = format.Depth < 8 ? 1 << format.Depth : 256;
  const bool grey = (format.ColorType & PNG_COLOR_MASK_COLOR) == 0;
  t_Image picture{7, 5, {}};
  for (int i = 0; i < 35; ++i) {
    const auto level = static_cast<UInt8>(i * 5 % levels * 255 / (levels - 1));
    UInt8 alpha = 255;
    if (hasAlpha(format)) {
      alpha = static_cast<UInt8>(i * 53);
    } else if (format.Transparency) {
      alpha = format.ColorType == PNG_COLOR_TYPE_PALETTE ? 255 - level : level == 0 ? 0 : 255;
    }
    const UInt8 green = grey ? level : 255 - level;
    const UInt8 blue = grey ? level : level ^ 0x5a;
    picture.Pixels.insert(picture.Pixels.end(), {alpha, level, green, blue});
  }
  return picture;
}

using Pixel = std::vector<UInt8>;  // A, R, G, B

// The samples of `pixel` in `format`, at 8 bits: its palette index (a new colour joins the
// palette), or grey or red, green and blue, then alpha.
Pixel samplesOf(const Format& format, const Pixel& pixel, std::vector<Pixel>& palette) {
  if (format.ColorType == PNG_COLOR_TYPE_PALETTE) {
    auto entry = std::find(palette.begin(), palette.end(), pixel);
    if (entry == palette.end()) entry = palette.insert(entry, pixel);
    return {static_cast<UInt8>(entry - palette.begin())};
  }
  Pixel samples{pixel[1]};
  if ((format.ColorType & PNG_COLOR_MASK_COLOR) != 0)
    samples.insert(samples.end(), {pixel[2], pixel[3]});
  if (hasAlpha(format)) samples.push_back(pixel[0]);
  return samples;
}

// An 8-bit sample at the file's depth: its high bits below 8 bits, its byte twice at 16.
png_uint_16 sampleAt(int depth, UInt8 value) {
  return depth == 16 ? value * 257 : value >> (8 - std::min(depth, 8));
}

// Writes `picture` in `format` with libpng.
void writePng(const std::string& path, const Format& format, const t_Image& picture) {
  std::vector<Pixel> palette;
  std::vector<std::vector<png_byte>> rows(5);
  for (std::size_t i = 0; i < 35; ++i) {
    const Pixel pixel(&picture.Pixels[4 * i], &picture.Pixels[4 * i + 4]);
    for (const UInt8 sample : samplesOf(format, pixel, palette)) {
      const bool index = format.ColorType == PNG_COLOR_TYPE_PALETTE;
      const png_uint_16 value = index ? sample : sampleAt(format.Depth, sample);
      if (format.Depth == 16) rows[i / 7].push_back(static_cast<png_byte>(value >> 8));
      rows[i / 7].push_back(static_cast<png_byte>(value));
    }
  }
  std::FILE* file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, 7, 5, format.Depth, format.ColorType, format.Interlace,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> colours;
  std::vector<png_byte> alphas;
  for (const Pixel& entry : palette) {
    colours.push_back({entry[1], entry[2], entry[3]});
    alphas.push_back(entry[0]);
  }
  if (!palette.empty()) png_set_PLTE(png, info, colours.data(), static_cast<int>(colours.size()));
  const UInt8* first = picture.Pixels.data();
  png_color_16 key{0, sampleAt(format.Depth, first[1]), sampleAt(format.Depth, first[2]),
                   sampleAt(format.Depth, first[3]), sampleAt(format.Depth, first[1])};
  if (format.Transparency) {
    png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), &key);
  }
  png_write_info(png, info);
  if (format.Depth < 8) png_set_packing(png);
  std::vector<png_bytep> pointers;
  for (std::vector<png_byte>& row : rows) pointers.push_back(row.data());
  png_write_image(png, pointers.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

// A PNG that declares `width` x `height` grey pixels and ends where their data would begin.
void writeHeaderOnly(const std::string& path, png_uint_32 width, png_uint_32 height) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  const png_byte data[] = "IDAT";
  png_write_chunk(png, data, data, 4);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

class LoadPictureTest : public RuntimeTest {
 protected:
  TestFolder folder_{"rvtools-load-picture-"};
};

TEST_F(LoadPictureTest, EveryColourTypeAndBitDepthReadsBackExactly) {
  const Format formats[] = {{PNG_COLOR_TYPE_GRAY, 1},
                            {PNG_COLOR_TYPE_GRAY, 2, true},
                            {PNG_COLOR_TYPE_GRAY, 4},
                            {PNG_COLOR_TYPE_GRAY, 8, true},
                            {PNG_COLOR_TYPE_GRAY, 16},
                            {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
                            {PNG_COLOR_TYPE_GRAY_ALPHA, 16},
                            {PNG_COLOR_TYPE_PALETTE, 1},
                            {PNG_COLOR_TYPE_PALETTE, 2, true},
                            {PNG_COLOR_TYPE_PALETTE, 4},
                            {PNG_COLOR_TYPE_PALETTE, 8, true, PNG_INTERLACE_ADAM7},
                            {PNG_COLOR_TYPE_RGB, 8},
                            {PNG_COLOR_TYPE_RGB, 16, true},
                            {PNG_COLOR_TYPE_RGB, 8, false, PNG_INTERLACE_ADAM7},
                            {PNG_COLOR_TYPE_RGBA, 8},
                            {PNG_COLOR_TYPE_RGBA, 16, false, PNG_INTERLACE_ADAM7}};
  for (const Format& format : formats) {
    const t_Image expected = pictureIn(format);
    const std::string file = folder_.path("format-" + std::to_string(&format - formats) + ".png");
    writePng(file, format, expected);
    // tools/run-tests seeds the fuzzing of the loader with these files.
    if (const char* seeds = std::getenv("RVTOOLS_PICTURE_SEEDS")) {
      std::filesystem::copy(file, seeds, std::filesystem::copy_options::overwrite_existing);
    }
    SCOPED_TRACE(file);
    const std::optional<t_Image> picture = t_LoadPicture(file);
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(Position(picture->Width, picture->Height), Position(7, 5));
    EXPECT_EQ(picture->Pixels, expected.Pixels);
  }
  EXPECT_TRUE(logLines().empty());
}

TEST_F(LoadPictureTest, MissingCutForeignAndOversizedFilesGiveNothingAndOneLogLine) {
  const std::string whole = folder_.path("whole.png");
  writePng(whole, {PNG_COLOR_TYPE_RGB, 8}, pictureIn({PNG_COLOR_TYPE_RGB, 8}));
  const std::vector<UInt8> bytes = t_ReadFile(whole);
  const auto cutAt = [&](const std::string& name, std::size_t length) {
    std::ofstream(folder_.path(name))
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(length));
  };
  cutAt("cut.png", bytes.size() / 2);
  cutAt("unended.png", bytes.size() - 1);
  std::ofstream(folder_.path("text.png")) << "A picture of a tub.\n";
  writeHeaderOnly(folder_.path("huge.png"), 100000, 100000);
  writeHeaderOnly(folder_.path("largest.png"), 8192, 8192);

  const Lines files{"missing.png", "cut.png", "unended.png", "text.png", "huge.png",
                    "largest.png", "."};
  for (const std::string& name : files) {
    EXPECT_FALSE(t_LoadPicture(folder_.path(name)).has_value()) << name;
  }
  const auto line = [&](const std::string& name, const std::string& reason) {
    return "t_LoadPicture: „" + folder_.path(name) + "“ " + reason + ".";
  };
  EXPECT_EQ(logLines(),
            (Lines{"t_LoadPicture: Could not read „" + folder_.path("missing.png") +
                       "“: No such file or directory.",
                   line("cut.png", "is no PNG picture: the file ends early"),
                   line("unended.png", "is no PNG picture: the file ends early"),
                   line("text.png", "is no PNG picture: Not a PNG file"),
                   line("huge.png", "is 100000 x 100000 pixels; a side may have at most 8192"),
                   line("largest.png", "is too short for its 8192 x 8192 pixels"),
                   "t_LoadPicture: Could not read „" + folder_.path(".") + "“: it is no file."}));
}

}  // namespace
}  // namespace rvtools::testing
