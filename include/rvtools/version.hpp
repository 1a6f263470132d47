// SPDX-License-Identifier: MIT
// The version of rvtools: major, minor and patch numbers, and the three as text. The build
// takes its version from here, so these lines are the one place where it is written.
#pragma once

#define RVTOOLS_VERSION_MAJOR 0
#define RVTOOLS_VERSION_MINOR 1
#define RVTOOLS_VERSION_PATCH 0
#define RVTOOLS_VERSION "0.1.0"

namespace rvtools {

// The version that the program was built with, as "major.minor.patch".
inline constexpr const char* Version = RVTOOLS_VERSION;

}  // namespace rvtools
