// SPDX-License-Identifier: MIT
// Internal: integer arithmetic on values that a program may set to anything, such as the cursor
// and text-area fields of a window record. A result beyond the Int range stops at its edge
// instead of overflowing, so that a cursor at the largest column moving right stays there.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "rvtools/types.hpp"

namespace rvtools {

inline constexpr Int LargestInt = std::numeric_limits<Int>::max();
inline constexpr Int SmallestInt = std::numeric_limits<Int>::min();

// a + b, stopped at the edge of the Int range.
inline Int saturatingSum(Int a, Int b) {
  Int sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return b > 0 ? LargestInt : SmallestInt;
}

// a - b, stopped at the edge of the Int range.
inline Int saturatingDifference(Int a, Int b) {
  Int difference = 0;
  if (!__builtin_sub_overflow(a, b, &difference)) return difference;
  return b < 0 ? LargestInt : SmallestInt;
}

// a x b, stopped at the edge of the Int range.
inline Int saturatingProduct(Int a, Int b) {
  Int product = 0;
  if (!__builtin_mul_overflow(a, b, &product)) return product;
  return (a < 0) == (b < 0) ? LargestInt : SmallestInt;
}

// The count of the inclusive range first..last: last - first + 1, stopped at the Int range.
inline Int inclusiveCount(Int first, Int last) {
  return saturatingSum(saturatingDifference(last, first), 1);
}

// A coordinate given as a floating-point number, truncated toward zero; a value beyond the Int
// range stops at its edge, and a value that is no number gives 0.
inline Int truncatedCoordinate(double value) {
  constexpr double Limit = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) return 0;
  if (value >= Limit) return LargestInt;
  if (value <= -Limit) return SmallestInt;
  return static_cast<Int>(value);
}

}  // namespace rvtools
