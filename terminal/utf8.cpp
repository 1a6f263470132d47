// SPDX-License-Identifier: MIT
// The characters of UTF-8 text for the terminal's cells: invalid bytes, and a sequence that the
// text cuts short, never become a cell.
#include "terminal/utf8.hpp"

#include "rvtools/runtime.hpp"

namespace rvtools::terminal {

std::u32string charactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) {
    const Utf8Sequence sequence = decodeUtf8(text);
    if (sequence.Status == Utf8Status::Incomplete) break;
    if (sequence.Status == Utf8Status::Scalar) characters += sequence.Scalar;
    text.remove_prefix(sequence.Length);
  }
  return characters;
}

}  // namespace rvtools::terminal
