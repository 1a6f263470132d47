// SPDX-License-Identifier: MIT
// Internal: the menu work of t_InitMemory.
#pragma once

namespace rvtools {

// Fills MenuActions with the 37 built-in entries: tags 200..231, then 110..114.
void buildMenuActions();

// Removes the items that a platform adds to the Edit and Window menus (and a separator left at
// the end of Edit), in the German and the English menus, and prepares the pasteboard's text view.
void scanMenus();

}  // namespace rvtools
