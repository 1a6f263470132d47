// SPDX-License-Identifier: MIT
// LZW compression and font file writing for the font compiler and the tests. The encoder mirrors
// the loader's expansion: a dictionary of the 256 single bytes that grows by one string per code
// after the first, no reset and no end code, one code width for the whole stream.
#include "tools/font_writer.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>

namespace rvtools::fontwriter {
namespace {

constexpr int MinimumCodeWidth = 9;
constexpr UInt8 HeaderSize = 16;
constexpr UInt8 CompressedGreyFormat = 102;

// The strings that the encoder knows beyond the single bytes, each as the code of a known
// string plus one byte, in an open-addressing hash table that never needs to grow.
class StringTable {
 public:
  explicit StringTable(std::size_t entries)
      : slots_(std::bit_ceil(2 * entries + 2)), mask_(slots_.size() - 1) {}

  // The slot of the string `prefix` + `byte`: either its own or the empty one it would take.
  std::size_t slotOf(std::uint32_t prefix, UInt8 byte) const {
    const std::uint64_t key = keyOf(prefix, byte);
    std::size_t slot = ((key * 0x9E3779B97F4A7C15u) >> 32) & mask_;
    while (slots_[slot].key != 0 && slots_[slot].key != key) slot = (slot + 1) & mask_;
    return slot;
  }
  bool holds(std::size_t slot) const { return slots_[slot].key != 0; }
  std::uint32_t code(std::size_t slot) const { return slots_[slot].code; }
  void store(std::size_t slot, std::uint32_t prefix, UInt8 byte, std::uint32_t code) {
    slots_[slot] = {keyOf(prefix, byte), code};
  }

 private:
  struct Slot {
    std::uint64_t key = 0;  // 0 marks an empty slot
    std::uint32_t code = 0;
  };
  static std::uint64_t keyOf(std::uint32_t prefix, UInt8 byte) {
    return ((std::uint64_t{prefix} << 8) | byte) + 1;
  }
  std::vector<Slot> slots_;
  std::size_t mask_;
};

// The LZW codes of `bytes`: the longest known string at each step, each code adding that
// string plus the next byte to the dictionary.
std::vector<std::uint32_t> lzwCodes(const std::vector<UInt8>& bytes) {
  std::vector<std::uint32_t> codes;
  if (bytes.empty()) return codes;
  StringTable known(bytes.size());
  std::uint32_t nextCode = 256;
  std::uint32_t current = bytes[0];
  for (std::size_t i = 1; i < bytes.size(); ++i) {
    const std::size_t slot = known.slotOf(current, bytes[i]);
    if (known.holds(slot)) {
      current = known.code(slot);
      continue;
    }
    codes.push_back(current);
    known.store(slot, current, bytes[i], nextCode++);
    current = bytes[i];
  }
  codes.push_back(current);
  return codes;
}

int codeWidthFor(const std::vector<std::uint32_t>& codes) {
  const std::uint32_t largest = codes.empty() ? 0 : *std::max_element(codes.begin(), codes.end());
  return std::max(MinimumCodeWidth, static_cast<int>(std::bit_width(largest)));
}

std::vector<UInt8> packCodes(const std::vector<std::uint32_t>& codes, int width) {
  std::vector<UInt8> packed;
  packed.reserve((codes.size() * width + 7) / 8);
  std::uint64_t bits = 0;
  int bitCount = 0;
  for (std::uint32_t code : codes) {
    bits = (bits << width) | code;
    bitCount += width;
    while (bitCount >= 8) {
      bitCount -= 8;
      packed.push_back(static_cast<UInt8>(bits >> bitCount));
    }
  }
  if (bitCount > 0) packed.push_back(static_cast<UInt8>(bits << (8 - bitCount)));
  return packed;
}

void appendBigEndian(std::vector<UInt8>& out, std::uint32_t value, int count) {
  for (int i = count - 1; i >= 0; --i) out.push_back(static_cast<UInt8>(value >> (8 * i)));
}

}  // namespace

std::vector<UInt8> compressGlyphData(const std::vector<UInt8>& bytes) {
  const std::vector<std::uint32_t> codes = lzwCodes(bytes);
  const int width = codeWidthFor(codes);
  std::vector<UInt8> data{static_cast<UInt8>(width)};
  const std::vector<UInt8> packed = packCodes(codes, width);
  data.insert(data.end(), packed.begin(), packed.end());
  return data;
}

std::vector<UInt8> fontFileBytes(const GlyphSet& glyphs) {
  std::vector<UInt8> file{HeaderSize, 'r', 'v', 'f', 'n', CompressedGreyFormat};
  appendBigEndian(file, static_cast<std::uint32_t>(glyphs.Data.size()), 4);
  file.insert(file.end(), {glyphs.Start, glyphs.End, glyphs.Width, glyphs.Height});
  appendBigEndian(file, 0, 2);
  const std::vector<UInt8> data = compressGlyphData(glyphs.Data);
  file.insert(file.end(), data.begin(), data.end());
  return file;
}

bool writeFile(const std::string& path, const std::vector<UInt8>& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  out.close();
  return static_cast<bool>(out);
}

}  // namespace rvtools::fontwriter
