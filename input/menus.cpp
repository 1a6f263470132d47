// SPDX-License-Identifier: MIT
// Menus: inspecting and trimming the main menu by title, the start-up scan that removes the
// platform's own items, and menu choices. A choice whose tag is in MenuActions runs a built-in
// action (windows shown or hidden, copies to the pasteboard, the text windows cleared, file
// panels); any other choice starts the program's menu handler. Every choice is queued for the
// program. Depends on the host for the menus, the front window, the pasteboard and the panels.
#include "input/menus.hpp"

#include <algorithm>
#include <mutex>

#include "runtime/aux_windows.hpp"
#include "runtime/clock.hpp"
#include "runtime/log.hpp"
#include "rvtools/display.hpp"
#include "rvtools/input.hpp"
#include "rvtools/menu_tags.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

constexpr Int LastItem = 65535;
// Tags of the built-in menu actions: the window actions 200..231 (202 to 204 and 231 belong to
// no item), then the copy, clear and paste actions.
constexpr Int FirstWindowAction = MenuTag::HideAllWindows;
constexpr Int LastWindowAction = 231;
constexpr Int OtherActions[] = {MenuTag::CopyPicture, MenuTag::CopyText, MenuTag::ClearPrinter,
                                MenuTag::Paste, MenuTag::ClearConsole};
constexpr Int FirstGraphicWindowAction = MenuTag::showGraphicWindow(0);
constexpr Int LastGraphicWindowAction = MenuTag::hideGraphicWindow(GraphicWindowCount - 1);

// Items that the platform puts into the Edit and Window menus, in English and in German.
constexpr const char* PlatformEditItems[] = {"Special Characters…", "Emoji & Symbols",
                                             "Emoji & Symbole", "Start Dictation…",
                                             "Diktat starten …"};
constexpr const char* PlatformWindowItems[] = {"Tile Window to Left of Screen",
                                               "Tile Window to Right of Screen", "Vollbildmodus"};

// The handlers are replaced by the program thread while the interface thread and workers call
// them.
HandlerSlot<void()>& ProgramMenuHandler() {
  static auto* handler = new HandlerSlot<void()>;
  return *handler;
}

HandlerSlot<void()>& ProgramPasteHandler() {
  static auto* handler = new HandlerSlot<void()>;
  return *handler;
}

// MenuActions is read on the interface thread and added to by the program.
std::mutex& menuActionMutex() {
  static auto* mutex = new std::mutex;
  return *mutex;
}

t_MenuAction builtInAction(Int tag) {
  t_MenuAction action;
  action.Tag = tag;
  action.Action = tag;
  return action;
}

// The position an operation means: 65535 is the last item of a menu that has one.
Int resolvedPosition(Int position, std::size_t count) {
  return position == LastItem && count > 0 ? static_cast<Int>(count) - 1 : position;
}

bool inRange(Int position, std::size_t count) {
  return position >= 0 && position < static_cast<Int>(count);
}

void deleteItemTitled(const std::string& menuTitle, const std::string& itemTitle) {
  const Int index = t_MenuItemIndex(menuTitle, itemTitle);
  if (index >= 0) t_MenuItemDelete(menuTitle, index);
}

// A missing menu yields an empty title, which is taken for a separator as well.
void deleteTrailingSeparator(const std::string& menuTitle) {
  if (t_MenuItemTitle(menuTitle, LastItem).empty()) t_MenuItemDelete(menuTitle, LastItem);
}

void deleteWindowItem(const std::string& menuTitle, const std::string& itemTitle) {
  const Int index = t_MenuItemIndex(menuTitle, itemTitle);
  if (index < 0) return;
  logLine("*** Found ", menuTitle, " Menu Item ", itemTitle);
  t_MenuItemDelete(menuTitle, index);
}

t_MenuEvent menuEvent(const t_MenuItem& item) {
  t_MenuEvent event;
  if (!item.InMenu) return event;
  event.Kind = MenuEventKind;
  event.Time = absoluteMilliseconds();
  event.MenuTitle = item.MenuTitle;
  event.ItemTitle = item.ItemTitle;
  event.ItemKeyChar = item.KeyChar;
  event.ItemKeyMods = item.KeyMods;
  event.ItemKeyAsc = item.KeyAsc;
  event.ItemAction = item.Tag;
  return event;
}

// The index of the first MenuActions entry serving `tag`.
std::optional<std::size_t> menuActionIndex(Int tag) {
  if (tag == 0) return std::nullopt;
  std::lock_guard lock(menuActionMutex());
  const auto entry = std::find_if(MenuActions.begin(), MenuActions.end(),
                                  [tag](const t_MenuAction& action) { return action.Tag == tag; });
  if (entry == MenuActions.end()) return std::nullopt;
  return static_cast<std::size_t>(entry - MenuActions.begin());
}

// The panel runs on a copy of the entry, so that the program may add entries meanwhile; the
// chosen name and path are stored into the table afterwards.
void runFilePanel(std::size_t index, const t_MenuAction& entry, bool save) {
  const std::string path =
      host().runFilePanel({save, entry.Title, entry.Note, entry.FileName, entry.FileTypes});
  if (path.empty()) return;
  std::lock_guard lock(menuActionMutex());
  if (index >= MenuActions.size()) return;
  MenuActions[index].FilePath = path;
  MenuActions[index].FileName = path.substr(path.rfind('/') + 1);
}

void copyFrontPicture() {
  const UInt8 front = host().frontWindow();
  std::optional<t_Image> picture;
  if (front < GraphicWindowCount && host().viewHandle(front) != nullptr) {
    picture = t_WindowImage(front);
  }
  if (picture) {
    host().setPasteboardImage(*picture);
  } else {
    t_Beep();
  }
}

void copyFrontText() {
  const UInt8 front = host().frontWindow();
  if (front < GraphicWindowCount) {
    host().setPasteboardScreenText(front, t_GetScreen(front, "\r"));
    return;
  }
  if (front != VirtualPrinterWindowNumber && front != SystemConsoleWindowNumber) return;
  if (const std::optional<std::string> text = textWindowText("t_MenuEventHandler", front)) {
    host().setPasteboardText(*text);
  }
}

void pasteIntoFrontWindow() {
  // Until the program installs a paste handler, pasting beeps.
  if (host().frontWindow() >= GraphicWindowCount || !ProgramPasteHandler().callIfSet()) t_Beep();
}

void hideFrontWindow() {
  const UInt8 front = host().frontWindow();
  if (front != NoWindow) t_WindowVisible(front, false);
}

void showOrHide(UInt8 window, bool show) {
  if (show) {
    t_WindowFront(window);
  } else {
    t_WindowVisible(window, false);
  }
}

bool isGraphicWindowAction(Int action) {
  return action >= FirstGraphicWindowAction && action <= LastGraphicWindowAction;
}

// The graphic window that a show or hide action of a graphic window serves.
UInt8 graphicWindowOf(Int action) {
  return static_cast<UInt8>((action - FirstGraphicWindowAction) / 2);
}

bool windowReady(UInt8 window) {
  return MemoryInitialized && Windows[window].Initialized;
}

void showOrHideGraphicWindow(Int action) {
  const UInt8 window = graphicWindowOf(action);
  if (!windowReady(window)) {
    logLine("t_MenuEventHandler: Window #", window, " not initialized.");
    t_Beep();
    return;
  }
  showOrHide(window, action == MenuTag::showGraphicWindow(window));
}

// The program's menu handler as it is now, for a worker to run; a choice made before the
// program installed one starts a worker that does nothing.
std::function<void()> programMenuHandler() {
  std::function<void()> handler = ProgramMenuHandler().current();
  return handler ? handler : [] {};
}

t_MenuAction menuActionAt(std::size_t index) {
  std::lock_guard lock(menuActionMutex());
  return MenuActions[index];
}

void runMenuAction(std::size_t index) {
  const t_MenuAction entry = menuActionAt(index);
  const Int action = entry.Action;
  if (isGraphicWindowAction(action)) {
    showOrHideGraphicWindow(action);
    return;
  }
  switch (action) {
    case MenuTag::Open:
    case MenuTag::Save:
      return runFilePanel(index, entry, action == MenuTag::Save);
    case MenuTag::CopyPicture:
      return copyFrontPicture();
    case MenuTag::CopyText:
      return copyFrontText();
    case MenuTag::ClearPrinter:
      return clearTextWindow("t_MenuEventHandler", VirtualPrinterWindowNumber);
    case MenuTag::Paste:
      return pasteIntoFrontWindow();
    case MenuTag::ClearConsole:
      return clearTextWindow("t_MenuEventHandler", SystemConsoleWindowNumber);
    case MenuTag::HideAllWindows:
      for (UInt8 window = 0; window <= PreferencesWindowNumber; ++window) {
        t_WindowVisible(window, false);
      }
      return;
    case MenuTag::HideFrontWindow:
      return hideFrontWindow();
    case MenuTag::ShowMainWindow:
    case MenuTag::HideMainWindow:
      return showOrHide(MainWindowNumber, action == MenuTag::ShowMainWindow);
    case MenuTag::ShowPreferences:
    case MenuTag::HidePreferences:
      return showOrHide(PreferencesWindowNumber, action == MenuTag::ShowPreferences);
    case MenuTag::ShowPrinter:
    case MenuTag::HidePrinter:
      return showOrHide(VirtualPrinterWindowNumber, action == MenuTag::ShowPrinter);
    case MenuTag::ShowPasteboard:
    case MenuTag::HidePasteboard:
      return showOrHide(PasteboardWindowNumber, action == MenuTag::ShowPasteboard);
    case MenuTag::ShowConsole:
    case MenuTag::HideConsole:
      return showOrHide(SystemConsoleWindowNumber, action == MenuTag::ShowConsole);
    default:
      return;
  }
}

}  // namespace

Int t_MenuItemIndex(const std::string& menuTitle, const std::string& itemTitle) {
  const std::optional<std::vector<std::string>> titles = host().menuItemTitles(menuTitle);
  if (!titles) {
    logLine("t_MenuItemIndex: Menu not found.");
    return -2;
  }
  const auto item = std::find(titles->begin(), titles->end(), itemTitle);
  return item == titles->end() ? -1 : static_cast<Int>(item - titles->begin());
}

void t_MenuItemDelete(const std::string& menuTitle, Int position) {
  const std::optional<std::vector<std::string>> titles = host().menuItemTitles(menuTitle);
  if (!titles) {
    logLine("t_MenuItemDelete: Menu not found.");
    return;
  }
  position = resolvedPosition(position, titles->size());
  if (!inRange(position, titles->size())) {
    logLine("t_MenuItemDelete: Item position out of range");
    return;
  }
  host().deleteMenuItem(menuTitle, position);
}

std::string t_MenuItemTitle(const std::string& menuTitle, Int position) {
  const std::optional<std::vector<std::string>> titles = host().menuItemTitles(menuTitle);
  if (!titles) {
    logLine("t_MenuItemTitle: Menu not found.");
    return {};
  }
  position = resolvedPosition(position, titles->size());
  if (!inRange(position, titles->size())) {
    logLine("t_MenuItemTitle: Item position out of range");
    return {};
  }
  return (*titles)[static_cast<std::size_t>(position)];
}

void buildMenuActions() {
  std::lock_guard lock(menuActionMutex());
  MenuActions.clear();
  for (Int tag = FirstWindowAction; tag <= LastWindowAction; ++tag) {
    MenuActions.push_back(builtInAction(tag));
  }
  for (Int tag : OtherActions) MenuActions.push_back(builtInAction(tag));
}

void scanMenus() {
  for (const char* title : PlatformEditItems) {
    deleteItemTitled("Bearbeiten", title);
    deleteItemTitled("Edit", title);
  }
  deleteTrailingSeparator("Bearbeiten");
  deleteTrailingSeparator("Edit");
  for (const char* title : PlatformWindowItems) {
    deleteWindowItem("Fenster", title);
    deleteWindowItem("Window", title);
  }
  host().preparePasteboardView();
}

void t_MenuEventHandler(const t_MenuItem& item) {
  const t_MenuEvent event = menuEvent(item);
  const std::optional<std::size_t> entry = menuActionIndex(item.Tag);
  if (entry) runMenuAction(*entry);
  MenuEventQueue.append(event);
  if (!entry) startprocessasync(programMenuHandler());
}

void t_SetMenuHandler(std::function<void()> handler) {
  ProgramMenuHandler().set(std::move(handler));
}

std::optional<t_MenuEvent> t_TakeMenuEvent() {
  return MenuEventQueue.takeFirst();
}

void t_SetPasteHandler(std::function<void()> handler) {
  ProgramPasteHandler().set(std::move(handler));
}

void t_AddMenuAction(const t_MenuAction& action) {
  std::lock_guard lock(menuActionMutex());
  MenuActions.push_back(action);
}

std::optional<t_MenuAction> t_MenuActionOf(Int tag) {
  const std::optional<std::size_t> index = menuActionIndex(tag);
  if (!index) return std::nullopt;
  return menuActionAt(*index);
}

bool menuChoiceCanAct(Int tag) {
  const std::optional<t_MenuAction> entry = t_MenuActionOf(tag);
  if (tag == MenuTag::Open || tag == MenuTag::Save) return entry.has_value();
  if (!entry) return ProgramMenuHandler().isSet();
  if (isGraphicWindowAction(entry->Action)) return windowReady(graphicWindowOf(entry->Action));
  return true;
}

}  // namespace rvtools
