// SPDX-License-Identifier: MIT
// rvfont: the font compiler. It renders a TrueType face into a font resource file of 256 grey
// glyphs of 16 x 32 pixels (format 102), and draws the chart of any font file as a PNG.
// Depends on FreeType for the face, libpng for the chart, the font writer for compression and
// the runtime's own loader for reading font files back.
//
//   cmake --build build --target rvfont
//   build/tools/rvfont compile /usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf out.font
//   build/tools/rvfont chart out.font chart.png
//
// Character set: code c shows FontCodeCharacters[c] (rvtools/font_codes.hpp): 0..14 the quarter
// blocks, 32..126 ASCII, 156 a line through the middle of the cell, 160..255 Latin-1, the codes
// that the keyboard's translation table produces the character typed, and the remaining codes
// line, block and arrow symbols. Blocks, lines and shapes are drawn here (drawnSymbols) rather
// than taken from the face, so that they fill the cell exactly and join their neighbours; every
// other code is the face's glyph of its character.
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "runtime/files.hpp"
#include "rvtools/font_codes.hpp"
#include "text/fonts.hpp"
#include "tools/font_writer.hpp"

namespace {

using rvtools::UInt8;

constexpr int CellWidth = 16;
constexpr int CellHeight = 32;
constexpr int CellBytes = CellWidth * CellHeight;
constexpr int CodeCount = 256;
constexpr int MaximumRenderAttempts = 6;

using Cell = std::array<UInt8, CellBytes>;

// ---------------------------------------------------------------------------------------------
// Drawn symbols: shapes as "is this point ink?" in cell coordinates (x 0..16, y 0..32 from the
// top), sampled 4 x 4 times per pixel. Edges on whole pixels therefore come out exactly.

using Shape = std::function<bool(double x, double y)>;

constexpr int Samples = 4;

Cell drawShape(const Shape& inside) {
  Cell cell{};
  for (int y = 0; y < CellHeight; ++y) {
    for (int x = 0; x < CellWidth; ++x) {
      int hits = 0;
      for (int sy = 0; sy < Samples; ++sy) {
        for (int sx = 0; sx < Samples; ++sx) {
          hits += inside(x + (sx + 0.5) / Samples, y + (sy + 0.5) / Samples) ? 1 : 0;
        }
      }
      cell[y * CellWidth + x] = static_cast<UInt8>(hits * 255 / (Samples * Samples));
    }
  }
  return cell;
}

struct Area {
  double left, top, right, bottom;
  bool contains(double x, double y) const {
    return x >= left && x < right && y >= top && y < bottom;
  }
};

Shape filled(Area area) {
  return [=](double x, double y) { return area.contains(x, y); };
}

// Quarter weights: upper left 8, upper right 4, lower left 2, lower right 1.
Shape quarters(int mask) {
  return [=](double x, double y) {
    const int weight = (x < CellWidth / 2 ? 8 : 4) >> (y < CellHeight / 2 ? 0 : 2);
    return (mask & weight) != 0;
  };
}

enum class Shade { Light, Medium, Dark };

Shape shade(Shade level) {
  return [=](double x, double y) {
    const int px = static_cast<int>(x);
    const int py = static_cast<int>(y);
    const bool lightDot = (py % 2 == 0 && px % 4 == 0) || (py % 2 == 1 && px % 4 == 2);
    switch (level) {
      case Shade::Light:
        return lightDot;
      case Shade::Medium:
        return (px + py) % 2 == 0;
      case Shade::Dark:
        return !lightDot;
    }
    return false;
  };
}

// Line widths of one face: single lines, and each of the two strokes of a double line.
struct Strokes {
  double single;
  double doubleStroke;
};

constexpr Strokes RegularStrokes{2, 2};
constexpr Strokes BoldStrokes{4, 3};
constexpr double DoubleGap = 4;
constexpr double CentreX = CellWidth / 2.0;
constexpr double CentreY = CellHeight / 2.0;

enum Arm { Up = 1, Down = 2, Left = 4, Right = 8 };

// The union of the arms, each a band of half-width `half` running from the cell's edge across
// the crossing band of the same width.
bool inArms(int arms, double half, double x, double y) {
  const bool inRow = y >= CentreY - half && y < CentreY + half;
  const bool inColumn = x >= CentreX - half && x < CentreX + half;
  return ((arms & Left) && inRow && x < CentreX + half) ||
         ((arms & Right) && inRow && x >= CentreX - half) ||
         ((arms & Up) && inColumn && y < CentreY + half) ||
         ((arms & Down) && inColumn && y >= CentreY - half);
}

Shape singleLines(int arms, const Strokes& strokes) {
  const double half = strokes.single / 2;
  return [=](double x, double y) { return inArms(arms, half, x, y); };
}

// A double line is a wide band with a narrow one cut out of it; cutting the arms' narrow bands
// out of the union of their wide bands joins corners and crossings as box drawing expects.
Shape doubleLines(int arms, const Strokes& strokes) {
  const double gapHalf = DoubleGap / 2;
  const double outerHalf = gapHalf + strokes.doubleStroke;
  return [=](double x, double y) {
    return inArms(arms, outerHalf, x, y) && !inArms(arms, gapHalf, x, y);
  };
}

struct Point {
  double x, y;
};

double cross(Point a, Point b, Point p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

Shape triangle(Point a, Point b, Point c) {
  return [=](double x, double y) {
    const Point p{x, y};
    const double d1 = cross(a, b, p), d2 = cross(b, c, p), d3 = cross(c, a, p);
    return (d1 >= 0 && d2 >= 0 && d3 >= 0) || (d1 <= 0 && d2 <= 0 && d3 <= 0);
  };
}

Shape either(Shape first, Shape second) {
  return [=](double x, double y) { return first(x, y) || second(x, y); };
}

Shape without(Shape shape, Shape hole) {
  return [=](double x, double y) { return shape(x, y) && !hole(x, y); };
}

Shape disc(double radius) {
  return [=](double x, double y) { return std::hypot(x - CentreX, y - CentreY) <= radius; };
}

// The band of the given width along the line from a to b, across the whole cell.
Shape diagonal(Point a, Point b, double width) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  return [=](double x, double y) { return std::abs(cross(a, b, {x, y})) / length <= width / 2; };
}

Shape diamond() {
  return [](double x, double y) {
    return std::abs(x - CentreX) / 6.5 + std::abs(y - CentreY) / 10 <= 1;
  };
}

// An arrow whose tip lies at `tip`, pointing along (dx, dy), a unit axis vector.
Shape arrow(Point tip, double dx, double dy, double length, double shaft) {
  const double headLength = 7;
  const double headHalfWidth = 6;
  return [=](double x, double y) {
    const double back = (tip.x - x) * dx + (tip.y - y) * dy;  // distance behind the tip
    const double side = std::abs((x - tip.x) * dy - (y - tip.y) * dx);
    if (back < 0 || back > length) return false;
    if (back <= headLength) return side <= headHalfWidth * back / headLength;
    return side <= shaft / 2;
  };
}

struct DrawnSymbol {
  int code;
  Shape shape;
};

// Every code that is drawn rather than taken from the face, with its shape.
std::vector<DrawnSymbol> drawnSymbols(const Strokes& strokes) {
  std::vector<DrawnSymbol> symbols;
  // 0..14: the quarter blocks, code = 15 - mask (0 full block, 3 upper half, 14 lower right).
  for (int code = 0; code <= 14; ++code) symbols.push_back({code, quarters(15 - code)});
  const double line = strokes.single;
  const Shape square = filled({2, 10, 14, 22});
  const Shape squareInside = filled({2 + line, 10 + line, 14 - line, 22 - line});
  const Shape rising = diagonal({0, CellHeight}, {CellWidth, 0}, line);
  const Shape falling = diagonal({0, 0}, {CellWidth, CellHeight}, line);
  const auto single = [&](int arms) { return singleLines(arms, strokes); };
  const auto twin = [&](int arms) { return doubleLines(arms, strokes); };
  const std::vector<DrawnSymbol> others = {
      {15, shade(Shade::Light)},
      {16, shade(Shade::Medium)},
      {17, shade(Shade::Dark)},
      {18, single(Up | Down)},
      {19, single(Down | Right)},
      {20, single(Down | Left)},
      {21, single(Up | Right)},
      {22, single(Up | Left)},
      {23, single(Up | Down | Right)},
      {24, single(Up | Down | Left)},
      {25, single(Down | Left | Right)},
      {26, single(Up | Left | Right)},
      {27, single(Up | Down | Left | Right)},
      {28, arrow({1, CentreY}, -1, 0, 14, line)},
      {29, arrow({15, CentreY}, 1, 0, 14, line)},
      {30, arrow({CentreX, 6}, 0, -1, 20, line)},
      {31, arrow({CentreX, 26}, 0, 1, 20, line)},
      {127, diamond()},
      {133, twin(Left | Right)},
      {134, twin(Up | Down)},
      {135, twin(Down | Right)},
      {136, twin(Down | Left)},
      {137, twin(Up | Right)},
      {138, twin(Up | Left)},
      {139, twin(Up | Down | Right)},
      {140, twin(Up | Down | Left)},
      {141, twin(Down | Left | Right)},
      {142, twin(Up | Left | Right)},
      {143, twin(Up | Down | Left | Right)},
      {144, triangle({2, CentreY}, {14, 9}, {14, 23})},
      {145, triangle({14, CentreY}, {2, 9}, {2, 23})},
      {146, triangle({CentreX, 9}, {1.5, 22}, {14.5, 22})},
      {147, triangle({CentreX, 23}, {1.5, 10}, {14.5, 10})},
      {148, disc(6.5)},
      {149, without(disc(6.5), disc(6.5 - line))},
      {150, square},
      {151, without(square, squareInside)},
      {152, rising},
      {153, falling},
      {155, either(rising, falling)},
      {156, single(Left | Right)},
      {157, filled({0, 0, CellWidth, CellHeight / 8.0})},
      {158, filled({0, CellHeight * 7 / 8.0, CellWidth, CellHeight})},
      {159, filled({0, 0, CellWidth / 8.0, CellHeight})},
  };
  symbols.insert(symbols.end(), others.begin(), others.end());
  return symbols;
}

// Stand-ins for characters that a face may lack.
constexpr std::pair<char32_t, char32_t> LookAlikes[] = {
    {U'⁄', U'/'}, {U'∆', U'Δ'}, {U'Ω', U'\u2126'}, {U'–', U'-'},
    {U'“', U'"'}, {U'‚', U','}, {U'•', U'·'},      {U'…', U'.'},
};

std::optional<char32_t> lookAlike(char32_t character) {
  for (const auto& [original, standIn] : LookAlikes) {
    if (original == character) return standIn;
  }
  return std::nullopt;
}

// ---------------------------------------------------------------------------------------------
// Glyphs from a TrueType face

class FaceRenderer {
 public:
  FaceRenderer() = default;
  FaceRenderer(const FaceRenderer&) = delete;
  FaceRenderer& operator=(const FaceRenderer&) = delete;
  ~FaceRenderer() {
    if (face_ != nullptr) FT_Done_Face(face_);
    if (library_ != nullptr) FT_Done_FreeType(library_);
  }

  bool open(const std::string& path) {
    if (FT_Init_FreeType(&library_) != 0) return false;
    if (FT_New_Face(library_, path.c_str(), 0, &face_) != 0) return false;
    if (!FT_IS_SCALABLE(face_)) return false;
    return chooseSize();
  }

  bool isBold() const { return (face_->style_flags & FT_STYLE_FLAG_BOLD) != 0; }

  // Renders `character` into the cell; false when the face has no glyph for it.
  bool render(char32_t character, Cell& cell) {
    const FT_UInt index = FT_Get_Char_Index(face_, character);
    if (index == 0) return false;
    FT_Int32 hinting = FT_LOAD_DEFAULT;
    FT_F26Dot6 size = size_;
    for (int attempt = 0; attempt < MaximumRenderAttempts; ++attempt) {
      if (!renderAt(index, size, hinting)) return false;
      const double overflow = overflowFactor();
      if (overflow <= 1) break;
      // Hinting can push an outline that lies within the ascender and descender a row beyond
      // them; unhinted, it keeps to the baseline. Only what is still too large is drawn smaller.
      if (hinting != FT_LOAD_NO_HINTING) {
        hinting = FT_LOAD_NO_HINTING;
      } else {
        size = static_cast<FT_F26Dot6>(size / overflow * 0.98);
      }
    }
    place(cell);
    return true;
  }

 private:
  // The largest size at which the monospace advance fits the cell width and the ascender plus
  // descender fit its height; the baseline divides the spare rows evenly.
  bool chooseSize() {
    FT_Fixed advance = 0;
    const FT_UInt index = FT_Get_Char_Index(face_, U'M');
    if (index == 0 || FT_Get_Advance(face_, index, FT_LOAD_NO_SCALE, &advance) != 0 || advance <= 0)
      return false;
    const double unitsPerEm = face_->units_per_EM;
    const double extent = face_->ascender - face_->descender;
    if (extent <= 0 || unitsPerEm <= 0) return false;
    const double pixelsPerEm =
        std::min(CellWidth * unitsPerEm / advance, CellHeight * unitsPerEm / extent);
    size_ = static_cast<FT_F26Dot6>(std::floor(pixelsPerEm * 64));
    const double ascender = face_->ascender * pixelsPerEm / unitsPerEm;
    const double spare = CellHeight - extent * pixelsPerEm / unitsPerEm;
    baseline_ = std::clamp(static_cast<int>(std::lround(spare / 2 + ascender)), 1, CellHeight - 1);
    return true;
  }

  bool renderAt(FT_UInt index, FT_F26Dot6 size, FT_Int32 hinting) {
    return FT_Set_Char_Size(face_, 0, size, 72, 72) == 0 &&
           FT_Load_Glyph(face_, index, hinting) == 0 &&
           FT_Render_Glyph(face_->glyph, FT_RENDER_MODE_NORMAL) == 0 &&
           face_->glyph->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && face_->glyph->bitmap.pitch >= 0;
  }

  // How many times the rendered glyph is too wide for the cell, or too tall for the rows above
  // or below the baseline; at most 1 when it fits.
  double overflowFactor() const {
    const FT_GlyphSlot slot = face_->glyph;
    const double above = slot->bitmap_top;
    const double below = static_cast<double>(slot->bitmap.rows) - slot->bitmap_top;
    return std::max({slot->bitmap.width / static_cast<double>(CellWidth), above / baseline_,
                     below / (CellHeight - baseline_)});
  }

  // Copies the rendered glyph into the cell, its advance centred, moved inward where it would
  // cross the cell's edge.
  void place(Cell& cell) const {
    const FT_GlyphSlot slot = face_->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    const int width = static_cast<int>(bitmap.width);
    const int rows = static_cast<int>(bitmap.rows);
    const int pen = static_cast<int>(std::lround((CellWidth - slot->advance.x / 64.0) / 2));
    const int left = std::clamp(pen + slot->bitmap_left, 0, std::max(0, CellWidth - width));
    const int top = std::clamp(baseline_ - slot->bitmap_top, 0, std::max(0, CellHeight - rows));
    for (int row = 0; row < rows && top + row < CellHeight; ++row) {
      for (int column = 0; column < width && left + column < CellWidth; ++column) {
        cell[(top + row) * CellWidth + left + column] = bitmap.buffer[row * bitmap.pitch + column];
      }
    }
  }

  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
  FT_F26Dot6 size_ = 0;
  int baseline_ = 0;
};

void storeCell(std::vector<UInt8>& data, int code, const Cell& cell) {
  std::copy(cell.begin(), cell.end(), data.begin() + code * CellBytes);
}

int compile(const std::string& facePath, const std::string& outPath) {
  FaceRenderer face;
  if (!face.open(facePath)) {
    std::fprintf(stderr, "rvfont: cannot use the face %s\n", facePath.c_str());
    return 1;
  }
  rvtools::fontwriter::GlyphSet glyphs{0, 255, CellWidth, CellHeight,
                                       std::vector<UInt8>(CodeCount * CellBytes)};
  std::array<bool, CodeCount> drawn{};
  for (const DrawnSymbol& symbol : drawnSymbols(face.isBold() ? BoldStrokes : RegularStrokes)) {
    storeCell(glyphs.Data, symbol.code, drawShape(symbol.shape));
    drawn[symbol.code] = true;
  }
  for (int code = 0; code < CodeCount; ++code) {
    if (drawn[code]) continue;
    const char32_t character = rvtools::fontCodeCharacter(static_cast<UInt8>(code));
    Cell cell{};
    const std::optional<char32_t> standIn = lookAlike(character);
    if (!face.render(character, cell) && !(standIn && face.render(*standIn, cell))) {
      std::fprintf(stderr, "rvfont: the face has no glyph for U+%04X; code %d stays blank\n",
                   static_cast<unsigned>(character), code);
    }
    storeCell(glyphs.Data, code, cell);
  }
  if (!rvtools::fontwriter::writeFile(outPath, rvtools::fontwriter::fontFileBytes(glyphs))) {
    std::fprintf(stderr, "rvfont: cannot write %s\n", outPath.c_str());
    return 1;
  }
  return 0;
}

// ---------------------------------------------------------------------------------------------
// The chart: a 16 x 16 grid of cells, code = 16 x row + column, hexadecimal labels on the top
// and the left, ink black on white, codes outside the font's range on grey.

struct Rgb {
  UInt8 red, green, blue;
};

constexpr Rgb White{255, 255, 255};
constexpr Rgb Separator{150, 150, 160};
constexpr Rgb Undefined{215, 215, 222};
constexpr Rgb LabelInk{60, 60, 140};
constexpr int LabelMargin = 24;
constexpr int LabelScale = 3;

// Hexadecimal digits 3 pixels wide and 5 high, row by row.
constexpr const char* DigitPatterns[16] = {
    "111101101101111", "010110010010111", "111001111100111", "111001111001111",
    "101101111001001", "111100111001111", "111100111101111", "111001001001001",
    "111101111101111", "111101111001111", "010101111101101", "110101110101110",
    "011100100100011", "110101101101110", "111100111100111", "111100111100100",
};

class Picture {
 public:
  Picture(int width, int height)
      : width_(width),
        height_(height),
        pixels_(static_cast<std::size_t>(width) * height * 3, 255) {}

  int width() const { return width_; }
  int height() const { return height_; }
  const UInt8* row(int y) const {
    return pixels_.data() + static_cast<std::size_t>(y) * width_ * 3;
  }

  void set(int x, int y, Rgb color) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    UInt8* pixel = pixels_.data() + (static_cast<std::size_t>(y) * width_ + x) * 3;
    pixel[0] = color.red;
    pixel[1] = color.green;
    pixel[2] = color.blue;
  }

  void fill(int x, int y, int width, int height, Rgb color) {
    for (int row = y; row < y + height; ++row) {
      for (int column = x; column < x + width; ++column) set(column, row, color);
    }
  }

  void digit(int x, int y, int value) {
    for (int i = 0; i < 15; ++i) {
      if (DigitPatterns[value][i] == '1') {
        fill(x + (i % 3) * LabelScale, y + (i / 3) * LabelScale, LabelScale, LabelScale, LabelInk);
      }
    }
  }

 private:
  int width_, height_;
  std::vector<UInt8> pixels_;
};

struct ChartLayout {
  int scale, cellWidth, cellHeight;

  int cellX(int column) const { return LabelMargin + 1 + column * (cellWidth + 1); }
  int cellY(int row) const { return LabelMargin + 1 + row * (cellHeight + 1); }
};

ChartLayout chartLayout(const rvtools::t_Font& font) {
  const int largest = static_cast<int>(std::max<rvtools::Int>({font.Width, font.Height, 1}));
  const int scale = std::max(1, 64 / largest);
  return {scale, static_cast<int>(std::max<rvtools::Int>(font.Width, 1)) * scale,
          static_cast<int>(std::max<rvtools::Int>(font.Height, 1)) * scale};
}

void drawGlyph(Picture& picture, const ChartLayout& layout, const rvtools::t_Font& font, int code) {
  const int x0 = layout.cellX(code % 16);
  const int y0 = layout.cellY(code / 16);
  const std::size_t glyphBytes = static_cast<std::size_t>(font.Width * font.Height);
  const std::size_t first = code * glyphBytes;
  const bool defined = code >= font.Start && code <= font.End && glyphBytes > 0 &&
                       first + glyphBytes <= font.Data.size();
  picture.fill(x0, y0, layout.cellWidth, layout.cellHeight, defined ? White : Undefined);
  if (!defined) return;
  for (int y = 0; y < font.Height; ++y) {
    for (int x = 0; x < font.Width; ++x) {
      const auto paper = static_cast<UInt8>(255 - font.Data[first + y * font.Width + x]);
      picture.fill(x0 + x * layout.scale, y0 + y * layout.scale, layout.scale, layout.scale,
                   {paper, paper, paper});
    }
  }
}

Picture drawChart(const rvtools::t_Font& font) {
  const ChartLayout layout = chartLayout(font);
  Picture picture(layout.cellX(16), layout.cellY(16));
  picture.fill(LabelMargin, LabelMargin, picture.width() - LabelMargin,
               picture.height() - LabelMargin, Separator);
  const int digitWidth = 3 * LabelScale;
  const int digitHeight = 5 * LabelScale;
  for (int i = 0; i < 16; ++i) {
    picture.digit(layout.cellX(i) + (layout.cellWidth - digitWidth) / 2,
                  (LabelMargin - digitHeight) / 2, i);
    picture.digit((LabelMargin - digitWidth) / 2,
                  layout.cellY(i) + (layout.cellHeight - digitHeight) / 2, i);
  }
  for (int code = 0; code < CodeCount; ++code) drawGlyph(picture, layout, font, code);
  return picture;
}

// Writes the rows; libpng reports an error by jumping back here, which returns false.
bool writeRows(png_structp png, png_infop info, FILE* file, const Picture& picture) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_init_io(png, file);
  png_set_IHDR(png, info, picture.width(), picture.height(), 8, PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  for (int y = 0; y < picture.height(); ++y) png_write_row(png, picture.row(y));
  png_write_end(png, nullptr);
  return true;
}

bool writePng(const Picture& picture, const std::string& path) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  const bool written = info != nullptr && writeRows(png, info, file, picture);
  png_destroy_write_struct(&png, &info);
  return std::fclose(file) == 0 && written;
}

int chart(const std::string& fontPath, const std::string& outPath) {
  const rvtools::t_Font font =
      rvtools::parseFontResource(rvtools::readWholeFile(fontPath), fontPath);
  if (font.Data.empty()) {
    std::fprintf(stderr, "rvfont: %s holds no glyphs\n", fontPath.c_str());
    return 1;
  }
  if (font.Format != 2) {
    std::fprintf(stderr, "rvfont: %s is of format %lld; only grey fonts (2) are charted\n",
                 fontPath.c_str(), static_cast<long long>(font.Format));
    return 1;
  }
  if (!writePng(drawChart(font), outPath)) {
    std::fprintf(stderr, "rvfont: cannot write %s\n", outPath.c_str());
    return 1;
  }
  return 0;
}

int usage() {
  std::fputs(
      "usage: rvfont compile <face.ttf> <out.font>   render a face into 16 x 32 grey glyphs\n"
      "       rvfont chart <in.font> <out.png>       draw a font file's 256 glyphs as a chart\n",
      stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return usage();
  const std::string command = argv[1];
  if (command == "compile") return compile(argv[2], argv[3]);
  if (command == "chart") return chart(argv[2], argv[3]);
  return usage();
}
