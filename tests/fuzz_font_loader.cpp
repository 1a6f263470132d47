// SPDX-License-Identifier: MIT
// libFuzzer target for the font loader: any file parses without a crash, out-of-bounds access or
// hang into a record that keeps the loader's promises; glyph data survives compression whole.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "rvtools/platform.hpp"
#include "text/fonts.hpp"
#include "tools/font_writer.hpp"

namespace {

using namespace rvtools;

void require(bool condition) {
  if (!condition) std::abort();
}

bool isCompressed(Int format) {
  return format == 100 || format == 102;
}

void checkRecord(const std::vector<UInt8>& bytes, const t_Font& font) {
  require(font.Identifier.size() == 4);
  require(!isCompressed(font.Format));
  if (bytes.empty()) {
    require(font.Data.empty() && font.HeaderSize == 16);
    return;
  }
  require(font.HeaderSize == bytes[0]);
  if (font.Data.empty() || bytes.size() < MinimumFontFileSize) return;
  require(font.Width == bytes[12] && font.Height == bytes[13]);
  if (isCompressed(bytes[5])) {
    require(font.Data.size() <= MaximumGlyphDataSize);
  } else {
    require(font.Data.size() == bytes.size() - bytes[0]);
  }
}

void checkCompressionKeeps(const std::vector<UInt8>& data) {
  const std::vector<UInt8> compressed = fontwriter::compressGlyphData(data);
  require(expandGlyphData(compressed) == data);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setLogSink([](std::string_view) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<UInt8> bytes(data, data + size);
  const t_Font font = parseFontResource(bytes, "fuzz.font");
  checkRecord(bytes, font);
  if (size >= MinimumFontFileSize && isCompressed(bytes[5]))
    checkCompressionKeeps(font.Data.vector());
  checkCompressionKeeps(bytes);
  return 0;
}
