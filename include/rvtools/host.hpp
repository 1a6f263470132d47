// SPDX-License-Identifier: MIT
// rvtools: everything a host needs, in one header.
//
// A host is what shows a program's windows on a platform: the desktop host on Qt
// (rvtools/shell.hpp), the terminal host (rvtools/terminal.hpp) and the headless host
// (rvtools/headless.hpp) are three. Writing another one takes four steps, all declared here:
//   1. implement the required core of the `Host` interface (rvtools/platform.hpp), and of its
//      optional parts what the platform has; install it with setHost;
//   2. run the launch sequence, runLaunchSequence, on the interface thread;
//   3. show each graphic window through its WindowView (rvtools/window_view.hpp) when the
//      runtime asks a view to display (Host::displayView): its picture, composed when
//      ShownPicture says the one shown is no longer current, or its text cells;
//   4. report the user's keys (viewKeyDown with the key numbers and flags of rvtools/keys.hpp),
//      clicks (viewMouseDown, viewMouseUp, at WindowView::windowPointOf) and menu choices
//      (t_MenuEventHandler with the tags of rvtools/menu_tags.hpp), and call
//      runTerminationSequence when the application ends.
// What hosts share (the interface thread's queue, waiting for the program, frames, menus and
// text views kept in memory) is in rvtools/host_support.hpp.
#pragma once

#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/host_support.hpp"
#include "rvtools/input.hpp"
#include "rvtools/keys.hpp"
#include "rvtools/menu_tags.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/sound.hpp"
#include "rvtools/types.hpp"
#include "rvtools/window_view.hpp"

namespace rvtools {

// Whether choosing the menu item of `tag` can do something for the running program, so that a
// host shows the item enabled: Open... and Save... once the program added an entry for them
// (t_AddMenuAction), an item for the program (tag 0, or a tag no entry serves) once it installed
// a menu handler, the items of graphic window n once that window is initialised, every other
// built-in item always.
bool menuChoiceCanAct(Int tag);

}  // namespace rvtools
