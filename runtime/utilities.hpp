// SPDX-License-Identifier: MIT
// Internal: number formatting for the runtime's log lines, character counts of texts, whether a
// key's value is a Unicode scalar, and the way back from t_Randomize's generator. The conversions between UTF-8 and Unicode scalars,
// scalarsOf and utf8Of, are public (rvtools/runtime.hpp).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// A "K" figure of needed memory: bytes / 1024 with a decimal comma and exactly two decimals
// (3,072,000 bytes give "3000,00").
std::string kilobyteText(Int bytes);

// The number of Unicode scalars in UTF-8 text, counted as scalarsOf counts them.
Int characterCount(std::string_view text);

// Whether `value` is a Unicode scalar: a code point that is no surrogate.
inline bool isScalarValue(Int value) {
  return value >= 0 && value <= 0x10FFFF && !(value >= 0xD800 && value <= 0xDFFF);
}

// t_Random mixes the system's random source with the clock again, as before any t_Randomize.
void useMixedRandomSource();

}  // namespace rvtools
