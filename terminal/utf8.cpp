// UTF-8 for the terminal host: one character out, one character in. Overlong forms,
// surrogates and values beyond U+10FFFF are refused, so that bad input never becomes a key.
#include "terminal/utf8.hpp"

namespace rvtools::terminal {
namespace {

constexpr char32_t Replacement = 0xFFFD;

bool isScalar(char32_t character) {
  return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

}  // namespace

void appendUtf8(std::string& out, char32_t character) {
  if (!isScalar(character)) character = Replacement;
  if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | (character >> 6));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    out += static_cast<char>(0xE0 | (character >> 12));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (character >> 18));
    out += static_cast<char>(0x80 | ((character >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  }
}

std::string utf8Of(char32_t character) {
  std::string out;
  appendUtf8(out, character);
  return out;
}

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
