// SPDX-License-Identifier: MIT
// rvtools: the tags of the menu items whose actions the runtime carries out itself, named once
// for the runtime's menu actions, the hosts' menus and their forms.
#pragma once

#include "rvtools/types.hpp"

namespace rvtools {

// The tags of the menu items whose actions the runtime carries out itself (MenuActions). An
// item with tag 0, or with a tag no entry serves, goes to the program's menu handler.
namespace MenuTag {
inline constexpr Int ForProgram = 0;  // an item whose choice goes to the program
inline constexpr Int Open = 100;      // a file panel, once the program added an entry for it
inline constexpr Int Save = 101;
inline constexpr Int CopyPicture = 110;
inline constexpr Int CopyText = 111;
inline constexpr Int ClearPrinter = 112;
inline constexpr Int Paste = 113;
inline constexpr Int ClearConsole = 114;
inline constexpr Int HideAllWindows = 200;
inline constexpr Int HideFrontWindow = 201;
inline constexpr Int ShowMainWindow = 205, HideMainWindow = 206;
inline constexpr Int ShowPreferences = 207, HidePreferences = 208;
inline constexpr Int ShowPrinter = 209, HidePrinter = 210;
inline constexpr Int ShowPasteboard = 211, HidePasteboard = 212;
inline constexpr Int ShowConsole = 229, HideConsole = 230;
// Graphic window n (0..7) is shown by ShowGraphicWindow + 2n and hidden by one more.
inline constexpr Int ShowGraphicWindow = 213;
constexpr Int showGraphicWindow(UInt8 window) {
  return ShowGraphicWindow + 2 * window;
}
constexpr Int hideGraphicWindow(UInt8 window) {
  return ShowGraphicWindow + 2 * window + 1;
}
}  // namespace MenuTag

}  // namespace rvtools
