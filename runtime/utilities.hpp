// Internal: number formatting for the runtime's log lines, and the Unicode scalars of texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// A "K" figure of needed memory: bytes / 1024 with a decimal comma and exactly two decimals
// (3,072,000 bytes give "3000,00").
std::string kilobyteText(Int bytes);

// The Unicode scalars of UTF-8 text; a byte that starts no valid sequence becomes U+FFFD.
std::vector<char32_t> scalarsOf(std::string_view text);
// The number of Unicode scalars in UTF-8 text, counted as scalarsOf counts them.
Int characterCount(std::string_view text);
// The UTF-8 form of one scalar; a value that is no scalar becomes U+FFFD.
std::string utf8Of(char32_t scalar);

}  // namespace rvtools
