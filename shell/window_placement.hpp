// SPDX-License-Identifier: MIT
// Internal: where an auxiliary window (pasteboard, virtual printer, system console, preferences,
// main window) opens when the program has not placed it: beside the graphic window in front
// when there is room, else cascaded over it below its menu bar, each window at a place of its
// own and wholly on the screen.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace rvtools::shell {

// The top-left corner of the frame (`frame` in size) of the auxiliary window counted `index`
// (0 for the first) within `screen`. `front` is the frame of the graphic window in front (empty
// for none), whose top `keepClear` pixels (title and menu bar) stay uncovered.
QPoint auxiliaryWindowPlace(const QRect& screen, QSize frame, const QRect& front, int keepClear,
                            int index);

}  // namespace rvtools::shell
