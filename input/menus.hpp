// Internal: the menu work of t_InitMemory.
#pragma once

namespace rvtools {

// Removes the items that a platform adds to the Edit and Window menus (and a separator left at
// the end of Edit), in the German and the English menus, and prepares the pasteboard's text view.
void scanMenus();

}  // namespace rvtools
