// SPDX-License-Identifier: MIT
// Menu bars that share one set of menus, the room they take in a window, and menu items as the
// runtime describes them (titles, key equivalent, tag).
#include "shell/menu_bar.hpp"

#include <QKeySequence>

#include "shell/key_translation.hpp"

namespace rvtools::shell {

std::unique_ptr<QMenuBar> sharedMenuBar(QWidget& window, const QList<QMenu*>& menus) {
  auto menuBar = std::make_unique<QMenuBar>(&window);
  menuBar->setNativeMenuBar(false);
  for (QMenu* menu : menus) menuBar->addMenu(menu);
  menuBar->setGeometry(0, 0, window.width(), menuBar->sizeHint().height());
  return menuBar;
}

void makeRoomForMenuBar(QWidget& window, const QMenuBar& menuBar) {
  const int height = menuBar.height();
  for (QWidget* child : window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (child != &menuBar) child->move(child->pos() + QPoint(0, height));
  }
  window.resize(window.width(), window.height() + height);
}

t_MenuItem menuItemOf(const QAction& action, const QMenu* menu) {
  t_MenuItem item;
  item.InMenu = menu != nullptr;
  if (menu != nullptr) item.MenuTitle = menu->title().toStdString();
  item.ItemTitle = action.text().toStdString();
  item.Tag = action.property("tag").toLongLong();
  const QKeySequence shortcut = action.shortcut();
  if (!shortcut.isEmpty()) {
    const QKeyCombination combination = shortcut[0];
    const QString key = QKeySequence(combination.key()).toString().toLower();
    item.KeyChar = key.toStdString();
    item.KeyAsc = key.isEmpty() ? 0 : key.at(0).unicode();
    item.KeyMods = static_cast<std::uint64_t>(modifierFlagsOf(combination.keyboardModifiers()));
  }
  return item;
}

QString columnRuler(int columns) {
  QString ruler;
  for (int column = 1; column <= columns; ++column) ruler += QChar('0' + column % 10);
  return ruler;
}

}  // namespace rvtools::shell
