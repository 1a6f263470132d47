// SPDX-License-Identifier: MIT
// Colours of a graphic window: the foreground of text and plots, and the border. Both take a
// colour number through the 16-colour palette; only its low four bits count.
#include <cstdint>

#include "runtime/checks.hpp"
#include "rvtools/display.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {

void t_Color(UInt8 window, Int color) {
  t_Window* record = checkedWindow("t_Color", window);
  if (record == nullptr) return;
  const auto foreground = static_cast<UInt8>((static_cast<std::uint64_t>(color) << 4) & 0xFF);
  record->TextColor = static_cast<UInt8>(foreground | (record->TextColor & 15));
  record->RGBColor = PaletteColor(color & 15);
}

void t_ColorBorder(UInt8 window, Int color) {
  t_Window* record = checkedWindow("t_ColorBorder", window);
  if (record == nullptr) return;
  record->RGBColorBorder = PaletteColor(color & 15);
  host().setBorderColor(window, record->RGBColorBorder);
}

}  // namespace rvtools
