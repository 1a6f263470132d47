// SPDX-License-Identifier: MIT
// Internal to the terminal host: decoding of one character from the front of a byte string, as
// the terminal's input needs it. Encoding is rvtools::utf8Of (rvtools/runtime.hpp).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace rvtools::terminal {

// The first character of `bytes` and how many bytes it takes.
struct DecodedCharacter {
  char32_t Character = 0;
  std::size_t Length = 0;
};

// What the bytes at the front of `bytes` are: a character, too few bytes yet (nothing, with
// `complete` false), or no valid UTF-8 (nothing, with `complete` true: one byte to skip).
std::optional<DecodedCharacter> decodeUtf8(std::string_view bytes, bool& complete);

// The characters of UTF-8 text; bytes that are no valid UTF-8 are left out.
std::u32string charactersOf(std::string_view text);

}  // namespace rvtools::terminal
