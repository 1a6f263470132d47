// SPDX-License-Identifier: MIT
// Internal: the version of each graphic window's picture, which every operation that writes the
// picture, its memory or its visibility advances, so that a view can tell an unchanged picture
// from a changed one without composing it (pictureVersion, rvtools/platform.hpp).
#pragma once

#include "rvtools/types.hpp"

namespace rvtools {

// Advances the picture version of window 0..7; other numbers are ignored.
void markPictureChanged(UInt8 window);

}  // namespace rvtools
