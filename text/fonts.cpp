// SPDX-License-Identifier: MIT
// Font resources: loading a font file from the bundle's resources, checking its header,
// expanding LZW-compressed glyph data, and giving a window another font. Depends on the host
// for the bundle path, the whole-file reader, the log and the window entry checks.
#include "text/fonts.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "runtime/checks.hpp"
#include "runtime/files.hpp"
#include "runtime/log.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

// Larger than any font file: 256 glyphs of at most 255 x 255 grey bytes are under 17 MiB, and
// compressed they are smaller still. A name that leads elsewhere (a file of endless size such
// as one of /proc, a huge file) is refused as "could not load" without reading it all.
constexpr std::size_t LargestFontFile = std::size_t{64} << 20;

constexpr UInt8 FontIdentifier[4] = {'r', 'v', 'f', 'n'};
constexpr Int UncompressedFormat = 0;
constexpr Int GreyFormat = 2;
constexpr Int CompressedFormat = 100;
constexpr Int CompressedGreyFormat = 102;
constexpr std::uint32_t SingleByteCodes = 256;

// Cuts a byte stream into codes of a fixed width, most significant bit first. Bits at the end
// that do not fill a whole code are never returned.
class CodeReader {
 public:
  CodeReader(std::span<const UInt8> bytes, int width)
      : bytes_(bytes), width_(width), mask_((std::uint32_t{1} << width) - 1) {}

  std::size_t remainingCodes() const {
    return ((bytes_.size() - position_) * 8 + bitCount_) / static_cast<std::size_t>(width_);
  }

  bool next(std::uint32_t& code) {
    while (bitCount_ < width_) {
      if (position_ == bytes_.size()) return false;
      bits_ = (bits_ << 8) | bytes_[position_++];
      bitCount_ += 8;
    }
    bitCount_ -= width_;
    code = static_cast<std::uint32_t>(bits_ >> bitCount_) & mask_;
    return true;
  }

 private:
  std::span<const UInt8> bytes_;
  std::size_t position_ = 0;
  std::uint64_t bits_ = 0;
  int bitCount_ = 0;
  int width_;
  std::uint32_t mask_;
};

// Every dictionary string already occurs in the output, so an entry is where it occurs.
struct OutputString {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;
};

// The output of an LZW expansion, refusing to grow beyond MaximumGlyphDataSize.
class ExpansionOutput {
 public:
  std::size_t size() const { return bytes_.size(); }
  std::vector<UInt8> take() { return std::move(bytes_); }

  bool appendByte(UInt8 byte) {
    if (bytes_.size() >= MaximumGlyphDataSize) return false;
    bytes_.push_back(byte);
    return true;
  }

  // Appends an earlier part of the output again.
  bool appendCopy(OutputString source) {
    const std::size_t start = bytes_.size();
    if (source.length > MaximumGlyphDataSize - start) return false;
    bytes_.resize(start + source.length);
    std::memcpy(bytes_.data() + start, bytes_.data() + source.offset, source.length);
    return true;
  }

  UInt8 at(std::uint32_t offset) const { return bytes_[offset]; }

 private:
  std::vector<UInt8> bytes_;
};

// Outputs the string of `code`, the k-th code after the first; false for a code that is neither
// in the dictionary nor the one code that may refer to the entry about to be made.
bool outputCode(std::uint32_t code, const std::vector<OutputString>& added, OutputString previous,
                ExpansionOutput& output) {
  if (code < SingleByteCodes) return output.appendByte(static_cast<UInt8>(code));
  const std::size_t index = code - SingleByteCodes;
  if (index < added.size()) return output.appendCopy(added[index]);
  if (index > added.size()) return false;
  const UInt8 first = output.at(previous.offset);
  return output.appendCopy(previous) && output.appendByte(first);
}

std::uint32_t bigEndian(const std::vector<UInt8>& bytes, std::size_t offset, int count) {
  std::uint32_t value = 0;
  for (int i = 0; i < count; ++i) value = (value << 8) | bytes[offset + i];
  return value;
}

t_Font refusedFont(UInt8 headerSize, std::vector<UInt8> identifier) {
  t_Font font;
  font.HeaderSize = headerSize;
  font.Identifier = std::move(identifier);
  return font;
}

t_Font headerFields(const std::vector<UInt8>& bytes) {
  t_Font font;
  font.HeaderSize = bytes[0];
  font.Format = bytes[5];
  font.Size = bigEndian(bytes, 6, 4);
  font.Start = bytes[10];
  font.End = bytes[11];
  font.Width = bytes[12];
  font.Height = bytes[13];
  font.Reserved = bytes.size() >= 16 ? bigEndian(bytes, 14, 2) : 0;
  return font;
}

bool isCompressed(Int format) {
  return format == CompressedFormat || format == CompressedGreyFormat;
}

}  // namespace

std::vector<UInt8> expandGlyphData(std::span<const UInt8> compressed) {
  if (compressed.empty()) return {};
  const int width = compressed[0];
  if (width == 0 || width > MaximumCodeWidth) return {};
  CodeReader codes(compressed.subspan(1), width);
  std::uint32_t code = 0;
  if (!codes.next(code)) return {};

  ExpansionOutput output;
  output.appendByte(static_cast<UInt8>(code & 0xFF));
  OutputString previous{0, 1};
  // Each code outputs at least one byte, so the cap also bounds the dictionary.
  std::vector<OutputString> added;
  added.reserve(std::min(codes.remainingCodes(), MaximumGlyphDataSize));
  while (codes.next(code)) {
    const auto start = static_cast<std::uint32_t>(output.size());
    if (!outputCode(code, added, previous, output)) return {};
    added.push_back({previous.offset, previous.length + 1});
    previous = {start, static_cast<std::uint32_t>(output.size()) - start};
  }
  return output.take();
}

t_Font parseFontResource(const std::vector<UInt8>& bytes, const std::string& fileName) {
  if (bytes.empty()) {
    logLine("t_LoadFontResource: Could not load file „", fileName, "“");
    return EmptyFont();
  }
  const UInt8 headerSize = bytes[0];
  if (bytes.size() < headerSize || bytes.size() < MinimumFontFileSize) {
    logLine("t_LoadFontResource: Invalid header size");
    return refusedFont(headerSize, {std::begin(FontIdentifier), std::end(FontIdentifier)});
  }
  if (!std::equal(std::begin(FontIdentifier), std::end(FontIdentifier), bytes.begin() + 1)) {
    logLine("t_LoadFontResource: Invalid file type");
    return refusedFont(headerSize, {bytes.begin() + 1, bytes.begin() + 5});
  }

  t_Font font = headerFields(bytes);
  if (!isCompressed(font.Format)) {
    std::vector<UInt8> stored(bytes.size() - headerSize);
    std::copy(bytes.begin() + headerSize, bytes.end(), stored.begin());
    font.Data = SharedBytes(std::move(stored));
    return font;
  }
  font.Format = font.Format == CompressedGreyFormat ? GreyFormat : UncompressedFormat;
  font.Data = SharedBytes(expandGlyphData(std::span(bytes).subspan(headerSize)));
  return font;
}

t_Font t_LoadFontResource(const std::string& fileName) {
  const std::string path = host().bundlePath() + "/Contents/Resources/" + fileName;
  return parseFontResource(readWholeFile(path, LargestFontFile), fileName);
}

t_Font EmptyFont() {
  return t_Font{};
}

void t_WindowFont(UInt8 window, const t_Font& font) {
  if (t_Window* record = checkedWindow("t_WindowFont", window)) record->Font = font;
}

}  // namespace rvtools
