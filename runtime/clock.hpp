// SPDX-License-Identifier: MIT
// Internal: the absolute clock in whole milliseconds, the unit of event times and of the
// refresh's bookkeeping.
#pragma once

#include "rvtools/types.hpp"

namespace rvtools {

// The host's absolute time (seconds since 1 January 2001) x 1000, truncated; 0 for a clock
// value that no Int can hold.
Int absoluteMilliseconds();

}  // namespace rvtools
