// SPDX-License-Identifier: MIT
// Internal: what the window frame operations remember for the window view.
#pragma once

#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// The title the program last gave graphic window 0..7 with t_WindowTitle; empty before that
// and for other numbers.
std::string graphicWindowTitle(UInt8 window);

}  // namespace rvtools
