// SPDX-License-Identifier: MIT
// Internal: whether a window has a picture that the picture library can read, for the log lines
// of t_SavePicture and the recording operations.
#pragma once

#include <optional>
#include <string>

#include "rvtools/types.hpp"

namespace rvtools::picture {

// Why `window` is no initialised graphic window ("Window #3 not initialized."), or nothing.
std::optional<std::string> missingWindow(UInt8 window);

}  // namespace rvtools::picture
