// SPDX-License-Identifier: MIT
// UTF-8 for the terminal host: characters read one at a time from what the terminal sends,
// which may stop in the middle of one. Overlong forms, surrogates and values beyond U+10FFFF
// are refused, so that bad input never becomes a key.
#include "terminal/utf8.hpp"

namespace rvtools::terminal {
namespace {

bool isScalar(char32_t character) {
  return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

}  // namespace

std::optional<DecodedCharacter> decodeUtf8(std::string_view bytes, bool& complete) {
  complete = true;
  if (bytes.empty()) {
    complete = false;
    return std::nullopt;
  }
  const auto lead = static_cast<unsigned char>(bytes[0]);
  std::size_t length = 0;
  char32_t character = 0;
  char32_t smallest = 0;
  if (lead < 0x80) return DecodedCharacter{lead, 1};
  if ((lead & 0xE0) == 0xC0) {
    length = 2, character = lead & 0x1F, smallest = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, character = lead & 0x0F, smallest = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, character = lead & 0x07, smallest = 0x10000;
  } else {
    return std::nullopt;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (i >= bytes.size()) {
      complete = false;
      return std::nullopt;
    }
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (!isContinuation(byte)) return std::nullopt;
    character = (character << 6) | (byte & 0x3F);
  }
  if (character < smallest || !isScalar(character)) return std::nullopt;
  return DecodedCharacter{character, length};
}

std::u32string charactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) {
    bool complete = true;
    const std::optional<DecodedCharacter> decoded = decodeUtf8(text, complete);
    if (!decoded) {
      if (!complete) break;
      text.remove_prefix(1);
      continue;
    }
    characters += decoded->Character;
    text.remove_prefix(decoded->Length);
  }
  return characters;
}

}  // namespace rvtools::terminal
