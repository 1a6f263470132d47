// SPDX-License-Identifier: MIT
// The first place of an auxiliary window: beside the graphic window in front, or cascaded.
#include "shell/window_placement.hpp"

#include <algorithm>

namespace rvtools::shell {
namespace {

// Distance from the front window, and the step from one cascaded window to the next.
constexpr int Gap = 8;
constexpr int CascadeStep = 32;

int clampedInto(int position, int extent, int first, int last) {
  return std::clamp(position, first, std::max(first, last - extent + 1));
}

}  // namespace

QPoint auxiliaryWindowPlace(const QRect& screen, QSize frame, const QRect& front, int keepClear,
                            int index) {
  const int step = CascadeStep * (index + 1);
  QPoint place = screen.topLeft() + QPoint(step, step);
  if (!front.isEmpty()) {
    const bool roomBeside = front.right() + Gap + frame.width() <= screen.right();
    place = roomBeside ? QPoint(front.right() + 1 + Gap, front.top() + CascadeStep * index)
                       : front.topLeft() + QPoint(step, keepClear + step);
  }
  return {clampedInto(place.x(), frame.width(), screen.left(), screen.right()),
          clampedInto(place.y(), frame.height(), screen.top(), screen.bottom())};
}

}  // namespace rvtools::shell
