// SPDX-License-Identifier: MIT
// The absolute clock in milliseconds, read through the host.
#include "runtime/clock.hpp"

#include "rvtools/platform.hpp"

namespace rvtools {

Int absoluteMilliseconds() {
  const double milliseconds = host().absoluteTime() * 1000.0;
  constexpr double Limit = 9223372036854775808.0;  // 2^63
  if (!(milliseconds > -Limit && milliseconds < Limit)) return 0;
  return static_cast<Int>(milliseconds);
}

}  // namespace rvtools
