// SPDX-License-Identifier: MIT
// Internal to the terminal host: the characters of UTF-8 text, as the terminal's cells take
// them. Decoding is rvtools::decodeUtf8, encoding rvtools::utf8Of (rvtools/runtime.hpp).
#pragma once

#include <string>
#include <string_view>

namespace rvtools::terminal {

// The characters of UTF-8 text; bytes that are no valid UTF-8 are left out.
std::u32string charactersOf(std::string_view text);

}  // namespace rvtools::terminal
