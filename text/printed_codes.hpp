// SPDX-License-Identifier: MIT
// Internal: the font code that printing draws for a character of UTF-8 text.
#pragma once

#include "rvtools/types.hpp"

namespace rvtools {

// A Unicode scalar up to 255 is the font code of the same number; a character beyond the
// character set prints as "?".
constexpr UInt8 printedCode(char32_t scalar) {
  return static_cast<UInt8>(scalar > 255 ? U'?' : scalar);
}

}  // namespace rvtools
