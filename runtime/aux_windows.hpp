// SPDX-License-Identifier: MIT
// Internal: the text windows (virtual printer, system console) as the menu actions and the
// program's own operations reach them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "rvtools/types.hpp"

namespace rvtools {

// The text of window 9 or 10. Without its text view, logs "<operation>: Virtual printer window
// is nil, resource undefined." (or the system console's line), beeps and returns nothing.
std::optional<std::string> textWindowText(std::string_view operation, UInt8 window);
// Empties window 9 or 10, with the same message and beep when its text view is missing.
void clearTextWindow(std::string_view operation, UInt8 window);

}  // namespace rvtools
