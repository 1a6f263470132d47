// SPDX-License-Identifier: MIT
// rvtools: everything a host needs, in one header.
//
// A host is what shows a program's windows on a platform: the desktop host on Qt
// (rvtools/shell.hpp), the terminal host (rvtools/terminal.hpp) and the headless host
// (rvtools/headless.hpp) are three. Writing another one takes four steps, all declared here:
//   1. implement the `Host` interface (rvtools/platform.hpp) and install it with setHost;
//   2. run the launch sequence, runLaunchSequence, on the interface thread;
//   3. show each graphic window's picture (t_WindowImageInto, pictureVersion) when the runtime
//      asks a view to display (Host::displayView), and its text cells if the host shows text
//      (the window's text memory and FontCodeCharacters);
//   4. report the user's keys (viewKeyDown with the key numbers and flags of rvtools/keys.hpp),
//      clicks (viewMouseDown, viewMouseUp) and menu choices (t_MenuEventHandler with the tags
//      below), and call runTerminationSequence when the application ends.
#pragma once

#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/input.hpp"
#include "rvtools/keys.hpp"
#include "rvtools/menu_tags.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// Whether choosing the menu item of `tag` can do something for the running program, so that a
// host shows the item enabled: Open... and Save... once the program added an entry for them
// (t_AddMenuAction), an item for the program (tag 0, or a tag no entry serves) once it installed
// a menu handler, the items of graphic window n once that window is initialised, every other
// built-in item always.
bool menuChoiceCanAct(Int tag);

}  // namespace rvtools
