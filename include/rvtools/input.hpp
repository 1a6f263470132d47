// SPDX-License-Identifier: MIT
// rvtools: input: keys, the line input editor, mouse and menu events.
//
// Views turn key presses and clicks into `t_Event` records on the global queues (runtime.hpp);
// the program thread waits for keys with `t_GetKey` and edits lines with `t_InputForm`, or,
// moving things on the screen, takes keys with `t_InKey` and asks which are held with
// `t_KeyDown`.
// Handlers that the program installs run on worker threads after each click or menu choice.
// Menu choices either run one of the runtime's own actions or go to the program.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "rvtools/keys.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Keyboard

// A key press in the view of graphic window `window`: the hardware key number, the characters
// the key produced (UTF-8, empty for a dead key) and the modifier flags. Queues a key event,
// acts on the key, or drops it; then marks a key as down.
void viewKeyDown(UInt8 window, Int keyCode, const std::string& characters, Int modifierFlags);
void viewKeyUp();                          // a key went up
void viewKeyReleased(Int keyNumber);       // that key went up: t_KeyDown says false for it
void viewFlagsChanged(Int modifierFlags);  // the modifier keys changed

std::string t_GetKey(UInt8 window);                          // waits for the next key
Int t_GetYesNo(UInt8 window, Int defaultAnswer, bool echo);  // 1 yes, 0 no, -1 escape, -2 other
// Takes the next key without waiting: the code of the character t_GetKey would return for it,
// or -1 when no key is waiting. Like t_GetKey it takes keys of every window; it shows no cursor.
Int t_InKey(UInt8 window);
// Whether the key of that number (Key::A ...) is held down now, as the host reports presses and
// releases; false for a number outside the numbering.
bool t_KeyDown(Int keyNumber);

// A paste handler (t_SetPasteHandler) that types the pasteboard's plain text into the graphic
// window in front, as the keyboard would: a line feed or carriage return as Return, a tab as
// Tab, characters 32..255 and the keyboard's option characters as their keys. Other characters
// are dropped. All keys are queued at once, in order, behind the keys already waiting.
void t_PasteAsKeys();

// ---------------------------------------------------------------------------------------------
// Line input editor

// Prints a prompt and lets the user edit a line that starts as `defaultText`; returns it.
std::string t_InputForm(UInt8 window, const std::string& prompt, const std::string& defaultText,
                        bool displayOnly, Int inputMode, Int maximumLength);
void t_InputEdit(UInt8 window, Int key);          // applies one key to the line
void t_InputInsert(UInt8 window, Int character);  // inserts a character the mode accepts

// ---------------------------------------------------------------------------------------------
// Mouse

// What a view knows of a click besides its position: the mouse buttons held (bit 0 left, bit 1
// right, bit 2 any other) and the modifier flags at bits 16 to 23.
struct t_MouseClick {
  Int Buttons = 0;
  Int ModifierFlags = 0;
};

// A button press in the view of graphic window `window` at (x, y) in window coordinates (origin
// at the content's lower left, in pixels of the unscaled window). Queues a mouse event unless
// the window ignores events; then sets LeftMouseDown and RightMouseDown.
void viewMouseDown(UInt8 window, const t_MouseClick& click, double x, double y, bool right);
void viewMouseUp();  // a button went up: clears LeftMouseDown and RightMouseDown
// Builds the Kind 2 event of a click, queues it and starts the program's mouse handler.
void t_MouseEventHandler(UInt8 window, const t_MouseClick& click, double x, double y);
// The close box of graphic window `window` was clicked: hides the window, keeps its record.
void t_MouseEventPostCloseBoxClick(UInt8 window);

// Installs the program's mouse handler, started on a worker after every click.
void t_SetMouseHandler(std::function<void()> handler);
// Takes the oldest mouse event off MouseEventQueue, if there is one.
std::optional<t_Event> t_TakeMouseEvent();

// ---------------------------------------------------------------------------------------------
// Menus (menus by title, item positions from 0; 65535 stands for the last item)

Int t_MenuItemIndex(const std::string& menuTitle, const std::string& itemTitle);  // -1, -2 none
void t_MenuItemDelete(const std::string& menuTitle, Int position);        // removes one item
std::string t_MenuItemTitle(const std::string& menuTitle, Int position);  // "" when none

// A chosen menu item as the shell describes it.
struct t_MenuItem {
  bool InMenu = true;  // false for an item that belongs to no menu
  std::string MenuTitle;
  std::string ItemTitle;
  std::string KeyChar;        // the key equivalent as text, "" for none
  std::uint64_t KeyMods = 0;  // its modifier flags, bits 16 to 23
  Int KeyAsc = 0;             // the key equivalent's character code
  Int Tag = 0;
};

// A menu choice, on the interface thread: queues a t_MenuEvent and either runs the built-in
// action of its tag (MenuActions) or starts the program's menu handler on a worker.
void t_MenuEventHandler(const t_MenuItem& item);

// Installs the program's menu handler, started on a worker after every choice for the program.
void t_SetMenuHandler(std::function<void()> handler);
// Takes the oldest menu event off MenuEventQueue, if there is one.
std::optional<t_MenuEvent> t_TakeMenuEvent();
// Installs the handler of the Paste item for a graphic window in front; t_Beep until then.
// t_PasteAsKeys is a ready handler that types the pasted text.
void t_SetPasteHandler(std::function<void()> handler);

// Appends an entry to the table of built-in menu actions (MenuActions). With Action 100 or 101
// it gives File > Open... (tag 100) or File > Save... (tag 101) a file panel with its Title,
// Note, FileName and FileTypes ("txt,png"; empty for all types); the first entry of a tag
// serves it. Once the user has chosen, the entry holds the name and the path.
void t_AddMenuAction(const t_MenuAction& action);
// A copy of the first entry that serves `tag`; nothing when no entry does.
std::optional<t_MenuAction> t_MenuActionOf(Int tag);

}  // namespace rvtools
