// SPDX-License-Identifier: MIT
// What hosts share: the interface thread's queue of handed-over work, waiting for the program,
// window frames and text views kept in memory, and file names from window titles.
#include "rvtools/host_support.hpp"

#include <algorithm>
#include <chrono>

#include "rvtools/menu_tags.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Work for the interface thread

InterfaceWork::InterfaceWork(std::function<void()> wake)
    : wake_(std::move(wake)), interfaceThread_(std::this_thread::get_id()) {}

bool InterfaceWork::isInterfaceThread() const {
  return !interfaceThread_ || std::this_thread::get_id() == *interfaceThread_;
}

void InterfaceWork::run(const std::function<void()>& work) {
  if (!interfaceThread_) {
    std::lock_guard lock(callingThreadMutex_);
    work();
    return;
  }
  if (isInterfaceThread()) {
    work();
    return;
  }
  HandedOver item{&work};
  std::unique_lock lock(queueMutex_);
  queue_.push_back(&item);
  lock.unlock();
  wake_();
  lock.lock();
  done_.wait(lock, [&item] { return item.Done; });
}

void InterfaceWork::runHandedOver() {
  std::unique_lock lock(queueMutex_);
  while (!queue_.empty()) {
    HandedOver* item = queue_.front();
    queue_.pop_front();
    lock.unlock();
    (*item->Work)();
    lock.lock();
    item->Done = true;
    done_.notify_all();
  }
}

// ---------------------------------------------------------------------------------------------
// The program

bool programRunning() {
  return ProgramStartPending || runningProgramThreads() > 0;
}

void waitForProgramEnd() {
  while (programRunning()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

// ---------------------------------------------------------------------------------------------
// Window frames in memory

void WindowFrames::setTitle(UInt8 window, const std::string& title) {
  std::lock_guard lock(mutex_);
  if (window < Count) windows_[window].Title = title;
}

std::string WindowFrames::title(UInt8 window) const {
  std::lock_guard lock(mutex_);
  return window < Count ? windows_[window].Title : std::string();
}

void WindowFrames::setTitleVisible(UInt8 window, bool visible) {
  std::lock_guard lock(mutex_);
  if (window < Count) windows_[window].TitleVisible = visible;
}

bool WindowFrames::titleVisible(UInt8 window) const {
  std::lock_guard lock(mutex_);
  return window < Count && windows_[window].TitleVisible;
}

void WindowFrames::setPosition(UInt8 window, Int x, Int y) {
  std::lock_guard lock(mutex_);
  if (window >= Count) return;
  windows_[window].Frame.X = x;
  windows_[window].Frame.Y = y;
}

void WindowFrames::setContentSize(UInt8 window, Int width, Int height) {
  std::lock_guard lock(mutex_);
  if (window >= Count) return;
  windows_[window].Frame.Width = width;
  windows_[window].Frame.Height = height;
}

void WindowFrames::setVisible(UInt8 window, bool visible) {
  std::lock_guard lock(mutex_);
  if (window >= Count) return;
  windows_[window].Frame.Visible = visible;
  if (window == front_ && !visible) front_ = NoWindow;
}

void WindowFrames::bringToFront(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= Count) return;
  windows_[window].Frame.Visible = true;
  front_ = window;
}

void WindowFrames::center(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= Count) return;
  WindowFrame& frame = windows_[window].Frame;
  frame.X = (screen_.Width - frame.Width) / 2;
  frame.Y = (screen_.Height - frame.Height) / 2;
}

void WindowFrames::setBorderColor(UInt8 window, t_RGBColor color) {
  std::lock_guard lock(mutex_);
  if (window < Count) windows_[window].Border = color;
}

t_RGBColor WindowFrames::borderColor(UInt8 window) const {
  std::lock_guard lock(mutex_);
  return window < Count ? windows_[window].Border : t_RGBColor{};
}

WindowFrame WindowFrames::frame(UInt8 window) const {
  std::lock_guard lock(mutex_);
  return window < Count ? windows_[window].Frame : WindowFrame{};
}

UInt8 WindowFrames::front() const {
  std::lock_guard lock(mutex_);
  return front_;
}

// ---------------------------------------------------------------------------------------------
// Text views in memory

std::optional<std::size_t> TextViews::indexOf(UInt8 window) {
  if (window < PasteboardWindowNumber || window > SystemConsoleWindowNumber) return std::nullopt;
  return window - PasteboardWindowNumber;
}

std::optional<std::string> TextViews::text(UInt8 window) const {
  std::lock_guard lock(mutex_);
  const std::optional<std::size_t> index = indexOf(window);
  return index ? views_[*index] : std::nullopt;
}

bool TextViews::append(UInt8 window, const std::string& text) {
  std::lock_guard lock(mutex_);
  const std::optional<std::size_t> index = indexOf(window);
  if (!index || !views_[*index]) return false;
  *views_[*index] += text;
  return true;
}

bool TextViews::clear(UInt8 window) {
  std::lock_guard lock(mutex_);
  const std::optional<std::size_t> index = indexOf(window);
  if (!index || !views_[*index]) return false;
  views_[*index]->clear();
  return true;
}

void TextViews::setPresent(UInt8 window, bool present) {
  std::lock_guard lock(mutex_);
  if (const std::optional<std::size_t> index = indexOf(window)) {
    views_[*index] = present ? std::optional<std::string>("") : std::nullopt;
  }
}

// ---------------------------------------------------------------------------------------------
// Menus in memory

namespace {

// Graphic window 0..7: a show and a hide item each.
void addGraphicWindowItems(std::vector<MenuSet::Item>& items) {
  for (UInt8 n = 0; n < GraphicWindowCount; ++n) {
    items.push_back({"Show Window " + std::to_string(n), MenuTag::showGraphicWindow(n)});
    items.push_back({"Hide Window " + std::to_string(n), MenuTag::hideGraphicWindow(n)});
  }
}

}  // namespace

std::vector<MenuSet::Menu> MenuSet::desktopMenus() {
  using namespace MenuTag;
  std::vector<Item> windowItems;
  addGraphicWindowItems(windowItems);
  windowItems.insert(windowItems.end(), {{"", 0},
                                         {"Show Main Window", ShowMainWindow},
                                         {"Hide Main Window", HideMainWindow},
                                         {"Show Preferences", ShowPreferences},
                                         {"Hide Preferences", HidePreferences},
                                         {"Show Virtual Printer", ShowPrinter},
                                         {"Hide Virtual Printer", HidePrinter},
                                         {"Clear Virtual Printer", ClearPrinter},
                                         {"Show System Console", ShowConsole},
                                         {"Hide System Console", HideConsole},
                                         {"Clear System Console", ClearConsole},
                                         {"Show Pasteboard", ShowPasteboard},
                                         {"Hide Pasteboard", HidePasteboard},
                                         {"", 0},
                                         {"Hide Front Window", HideFrontWindow},
                                         {"Hide All Windows", HideAllWindows}});
  return {{"File", {{"Open…", Open}, {"Save…", Save}, {"", 0}, {"Quit", 0}}},
          {"Edit", {{"Copy Picture", CopyPicture}, {"Copy Text", CopyText}, {"Paste", Paste}}},
          {"Window", std::move(windowItems)},
          {"Program", {{"Program Action", 0}}}};
}

std::vector<MenuSet::Menu> MenuSet::menus() const {
  std::lock_guard lock(mutex_);
  return menus_;
}

void MenuSet::setMenus(std::vector<Menu> menus) {
  std::lock_guard lock(mutex_);
  menus_ = std::move(menus);
}

std::optional<std::vector<std::string>> MenuSet::itemTitles(const std::string& menuTitle) const {
  std::lock_guard lock(mutex_);
  for (const Menu& menu : menus_) {
    if (menu.Title != menuTitle) continue;
    std::vector<std::string> titles;
    for (const Item& item : menu.Items) titles.push_back(item.Title);
    return titles;
  }
  return std::nullopt;
}

void MenuSet::deleteItem(const std::string& menuTitle, Int position) {
  std::lock_guard lock(mutex_);
  for (Menu& menu : menus_) {
    if (menu.Title != menuTitle) continue;
    if (position >= 0 && position < static_cast<Int>(menu.Items.size())) {
      menu.Items.erase(menu.Items.begin() + position);
    }
    return;
  }
}

// ---------------------------------------------------------------------------------------------
// A host that keeps frames, menus and text views in memory

void InMemoryHost::setWindowTitle(UInt8 window, const std::string& title) {
  frames_.setTitle(window, title);
}

void InMemoryHost::setWindowContentSize(UInt8 window, Int width, Int height) {
  frames_.setContentSize(window, width, height);
}

void InMemoryHost::setWindowVisible(UInt8 window, bool visible) {
  frames_.setVisible(window, visible);
}

void InMemoryHost::bringWindowToFront(UInt8 window) {
  frames_.bringToFront(window);
}

WindowFrame InMemoryHost::windowFrame(UInt8 window) {
  return frames_.frame(window);
}

UInt8 InMemoryHost::frontWindow() {
  return frames_.front();
}

void InMemoryHost::setWindowTitleVisible(UInt8 window, bool visible) {
  frames_.setTitleVisible(window, visible);
}

void InMemoryHost::setWindowPosition(UInt8 window, Int x, Int y) {
  frames_.setPosition(window, x, y);
}

void InMemoryHost::centerWindow(UInt8 window) {
  frames_.center(window);
}

ScreenSize InMemoryHost::screenSize() {
  return frames_.screen();
}

void InMemoryHost::setBorderColor(UInt8 window, t_RGBColor color) {
  frames_.setBorderColor(window, color);
}

std::optional<std::vector<std::string>> InMemoryHost::menuItemTitles(const std::string& menuTitle) {
  return menus_.itemTitles(menuTitle);
}

void InMemoryHost::deleteMenuItem(const std::string& menuTitle, Int position) {
  menus_.deleteItem(menuTitle, position);
}

std::optional<std::string> InMemoryHost::textViewText(UInt8 window) {
  return textViews_.text(window);
}

bool InMemoryHost::appendToTextView(UInt8 window, const std::string& text) {
  return textViews_.append(window, text);
}

bool InMemoryHost::clearTextView(UInt8 window) {
  return textViews_.clear(window);
}

void InMemoryHost::preparePasteboardView() {
  textViews_.clear(PasteboardWindowNumber);
}

// ---------------------------------------------------------------------------------------------
// File names

std::string fileNameFromTitle(std::string_view title, UInt8 window, std::string_view extension) {
  const auto first = title.find_first_not_of(' ');
  const auto last = title.find_last_not_of(' ');
  std::string name(first == std::string_view::npos ? "" : title.substr(first, last - first + 1));
  std::replace(name.begin(), name.end(), '/', '-');
  std::replace_if(
      name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 32; }, '_');
  if (name.empty() || name == "." || name == "..") name = "Window " + std::to_string(window);
  return name + std::string(extension);
}

}  // namespace rvtools
