// SPDX-License-Identifier: MIT
// Internal: the application's one set of menus in the menu bar of every window, and what the
// runtime learns of a chosen item.
#pragma once

#include <QList>
#include <QMenu>
#include <QMenuBar>
#include <QString>
#include <memory>

#include "rvtools/host.hpp"

namespace rvtools::shell {

// A menu bar at the top of `window` that shows `menus` (not copies: every bar shows the same
// menus, so a change to a menu shows in every window).
std::unique_ptr<QMenuBar> sharedMenuBar(QWidget& window, const QList<QMenu*>& menus);
// Moves the window's other children below the bar and makes the window taller by its height.
void makeRoomForMenuBar(QWidget& window, const QMenuBar& menuBar);
// The runtime's description of `action`, an item of `menu` (null when it is in no menu); its
// tag is the action's dynamic property "tag".
t_MenuItem menuItemOf(const QAction& action, const QMenu* menu);
// A ruler line of `columns` digits, the last digit of each column number: "1234567890123...".
QString columnRuler(int columns);

}  // namespace rvtools::shell
