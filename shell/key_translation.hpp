// SPDX-License-Identifier: MIT
// Internal: turns a Qt key event into what the runtime's key handler expects: the hardware key
// number in the runtime's numbering (by the key's physical position), the characters the key
// produced, and the modifier flags at bits 16 to 23.
#pragma once

#include <QKeyEvent>
#include <QString>
#include <string>

#include "rvtools/keys.hpp"

namespace rvtools::shell {

struct KeyPress {
  Int KeyCode = Key::Unknown;
  std::string Characters;  // UTF-8
  Int Flags = 0;
  bool ModifierKey = false;  // Shift, Control, Alt, Meta, Caps Lock: only the flags changed
};

// The key number of an X11 key code (evdev code + 8); Key::Unknown when it has none.
Int keyNumberOfScanCode(quint32 scanCode);
// The key number of a Qt key, for platforms without scan codes; `keypad` for keys of the
// numeric pad.
Int keyNumberOfQtKey(int key, bool keypad);
// Modifier flags of Qt's modifiers.
Int modifierFlagsOf(Qt::KeyboardModifiers modifiers);
KeyPress translateKey(const QKeyEvent& event);

}  // namespace rvtools::shell
