// SPDX-License-Identifier: MIT
// Internal: a look into the sound queue, for tests.
#pragma once

#include <vector>

namespace rvtools {

// The frequencies of the tones and pauses (0) that wait or play, in the order they will play.
std::vector<double> queuedToneFrequencies();

}  // namespace rvtools
