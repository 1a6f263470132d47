// SPDX-License-Identifier: MIT
// The headless host: eight off-screen views and records of every frame operation, for tests,
// benchmarks and programs without a display. It has no interface thread of its own; platform
// work runs on the calling thread, one piece at a time. Its menus, text views, pasteboard and
// file panels live in memory.
#include "rvtools/headless.hpp"

#include <algorithm>
#include <thread>

#include "rvtools/host.hpp"

namespace rvtools {
namespace {

constexpr ScreenSize HeadlessScreen = {1920, 1080};

// Handles are the addresses of the host's own records, so they are unique and never null.
PlatformHandle handleOf(const void* record) {
  return record;
}

// Window 0..7: show and hide items with tags 213 + 2n and 214 + 2n.
void addGraphicWindowItems(std::vector<HeadlessHost::MenuItem>& items) {
  for (Int n = 0; n < 8; ++n) {
    items.push_back({"Show Window " + std::to_string(n), 213 + 2 * n});
    items.push_back({"Hide Window " + std::to_string(n), 214 + 2 * n});
  }
}

}  // namespace

HeadlessHost::HeadlessHost(std::string bundlePath)
    : bundlePath_(bundlePath.empty() ? bundleAroundExecutable() : std::move(bundlePath)) {
  for (int n = 0; n < 8; ++n) windows_[n].HasView = true;
}

std::vector<HeadlessHost::Menu> HeadlessHost::englishMenus() {
  std::vector<MenuItem> windowItems;
  addGraphicWindowItems(windowItems);
  windowItems.insert(windowItems.end(), {{"", 0},
                                         {"Show Main Window", 205},
                                         {"Hide Main Window", 206},
                                         {"Show Preferences", 207},
                                         {"Hide Preferences", 208},
                                         {"Show Virtual Printer", 209},
                                         {"Hide Virtual Printer", 210},
                                         {"Clear Virtual Printer", 112},
                                         {"Show System Console", 229},
                                         {"Hide System Console", 230},
                                         {"Clear System Console", 114},
                                         {"Show Pasteboard", 211},
                                         {"Hide Pasteboard", 212},
                                         {"", 0},
                                         {"Hide Front Window", 201},
                                         {"Hide All Windows", 200}});
  return {{"File", {{"Open…", 100}, {"Save…", 101}, {"", 0}, {"Quit", 0}}},
          {"Edit", {{"Copy Picture", 110}, {"Copy Text", 111}, {"Paste", 113}}},
          {"Window", std::move(windowItems)},
          {"Program", {{"Program Action", 0}}}};
}

std::vector<HeadlessHost::Menu> HeadlessHost::menus() const {
  std::lock_guard lock(mutex_);
  return menus_;
}

void HeadlessHost::setMenus(std::vector<Menu> menus) {
  std::lock_guard lock(mutex_);
  menus_ = std::move(menus);
}

void HeadlessHost::setTextViewPresent(UInt8 window, bool present) {
  std::lock_guard lock(mutex_);
  if (std::optional<std::string>* view = textView(window)) {
    *view = present ? std::optional<std::string>("") : std::nullopt;
  }
}

t_Image HeadlessHost::pasteboardImage() const {
  std::lock_guard lock(mutex_);
  return pasteboardImage_;
}

void HeadlessHost::setFilePanelAnswer(std::string path) {
  std::lock_guard lock(mutex_);
  filePanelAnswer_ = std::move(path);
}

FilePanelRequest HeadlessHost::lastFilePanel() const {
  std::lock_guard lock(mutex_);
  return lastFilePanel_;
}

HeadlessHost::Menu* HeadlessHost::menuTitled(const std::string& title) {
  const auto menu = std::find_if(menus_.begin(), menus_.end(), [&title](const Menu& candidate) {
    return candidate.Title == title;
  });
  return menu == menus_.end() ? nullptr : &*menu;
}

std::optional<std::string>* HeadlessHost::textView(UInt8 window) {
  if (window < PasteboardWindowNumber || window > SystemConsoleWindowNumber) return nullptr;
  return &textViews_[window - PasteboardWindowNumber];
}

HeadlessHost::WindowState HeadlessHost::windowState(UInt8 window) const {
  std::lock_guard lock(mutex_);
  return window < WindowCount ? windows_[window] : WindowState{};
}

void HeadlessHost::setViewPresent(UInt8 window, bool present) {
  std::lock_guard lock(mutex_);
  if (window < 8) windows_[window].HasView = present;
}

int HeadlessHost::beeps() const {
  std::lock_guard lock(mutex_);
  return beeps_;
}

int HeadlessHost::clicks() const {
  std::lock_guard lock(mutex_);
  return clicks_;
}

bool HeadlessHost::isInterfaceThread() const {
  return true;
}

void HeadlessHost::runOnInterfaceThread(const std::function<void()>& work) {
  std::lock_guard lock(mutex_);
  work();
}

PlatformHandle HeadlessHost::windowHandle(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= WindowCount || (window < 8 && !windows_[window].HasView)) return nullptr;
  return handleOf(&windows_[window]);
}

PlatformHandle HeadlessHost::viewHandle(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= 8 || !windows_[window].HasView) return nullptr;
  return handleOf(&windows_[window].Image);
}

// The off-screen view redraws at once: it composes the window's picture into its buffer.
void HeadlessHost::displayView(UInt8 window, bool) {
  if (window >= 8) return;
  t_Window& record = Windows[window];
  std::lock_guard lock(mutex_);
  WindowState& state = windows_[window];
  if (!state.HasView) return;
  record.VerticalBlank = false;
  const Int width = record.Width, height = record.Height;
  state.Image.resize(static_cast<size_t>(width > 0 && height > 0 ? width * height * 4 : 0));
  if (t_WindowImageInto(window, state.Image.data(), state.Image.size(),
                        PixelOrder::AlphaRedGreenBlue)) {
    ++state.Redraws;
  }
  record.VerticalBlank = true;
}

void HeadlessHost::setWindowTitle(UInt8 window, const std::string& title) {
  std::lock_guard lock(mutex_);
  if (window < WindowCount) windows_[window].Title = title;
}

void HeadlessHost::setWindowTitleVisible(UInt8 window, bool visible) {
  std::lock_guard lock(mutex_);
  if (window < WindowCount) windows_[window].TitleVisible = visible;
}

void HeadlessHost::setWindowPosition(UInt8 window, Int x, Int y) {
  std::lock_guard lock(mutex_);
  if (window >= WindowCount) return;
  windows_[window].Frame.X = x;
  windows_[window].Frame.Y = y;
}

void HeadlessHost::setWindowContentSize(UInt8 window, Int width, Int height) {
  std::lock_guard lock(mutex_);
  if (window >= WindowCount) return;
  windows_[window].Frame.Width = width;
  windows_[window].Frame.Height = height;
}

void HeadlessHost::bringWindowToFront(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= WindowCount) return;
  windows_[window].Frame.Visible = true;
  front_ = window;
}

void HeadlessHost::centerWindow(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= WindowCount) return;
  WindowFrame& frame = windows_[window].Frame;
  frame.X = (HeadlessScreen.Width - frame.Width) / 2;
  frame.Y = (HeadlessScreen.Height - frame.Height) / 2;
}

void HeadlessHost::setWindowVisible(UInt8 window, bool visible) {
  std::lock_guard lock(mutex_);
  if (window < WindowCount) windows_[window].Frame.Visible = visible;
  if (window == front_ && !visible) front_ = NoWindow;
}

WindowFrame HeadlessHost::windowFrame(UInt8 window) {
  std::lock_guard lock(mutex_);
  return window < WindowCount ? windows_[window].Frame : WindowFrame{};
}

ScreenSize HeadlessHost::screenSize() {
  return HeadlessScreen;
}

void HeadlessHost::setBorderColor(UInt8 window, t_RGBColor color) {
  std::lock_guard lock(mutex_);
  if (window < WindowCount) windows_[window].Border = color;
}

std::string HeadlessHost::bundlePath() {
  return bundlePath_;
}

bool HeadlessHost::playSound(Sound sound) {
  std::lock_guard lock(mutex_);
  ++(sound == Sound::Click ? clicks_ : beeps_);
  return true;
}

void HeadlessHost::systemBeep() {
  std::lock_guard lock(mutex_);
  ++beeps_;
}

std::string HeadlessHost::pasteboardText() {
  std::lock_guard lock(mutex_);
  return pasteboard_;
}

void HeadlessHost::setPasteboardText(const std::string& text) {
  std::lock_guard lock(mutex_);
  pasteboard_ = text;
  pasteboardImage_ = {};
}

void HeadlessHost::setPasteboardImage(const t_Image& image) {
  std::lock_guard lock(mutex_);
  pasteboard_.clear();
  pasteboardImage_ = image;
}

std::optional<std::vector<std::string>> HeadlessHost::menuItemTitles(const std::string& menuTitle) {
  std::lock_guard lock(mutex_);
  const Menu* menu = menuTitled(menuTitle);
  if (menu == nullptr) return std::nullopt;
  std::vector<std::string> titles;
  for (const MenuItem& item : menu->Items) titles.push_back(item.Title);
  return titles;
}

void HeadlessHost::deleteMenuItem(const std::string& menuTitle, Int position) {
  std::lock_guard lock(mutex_);
  Menu* menu = menuTitled(menuTitle);
  if (menu == nullptr || position < 0 || position >= static_cast<Int>(menu->Items.size())) return;
  menu->Items.erase(menu->Items.begin() + position);
}

UInt8 HeadlessHost::frontWindow() {
  std::lock_guard lock(mutex_);
  return front_;
}

std::string HeadlessHost::runFilePanel(const FilePanelRequest& request) {
  std::lock_guard lock(mutex_);
  lastFilePanel_ = request;
  return filePanelAnswer_;
}

std::optional<std::string> HeadlessHost::textViewText(UInt8 window) {
  std::lock_guard lock(mutex_);
  const std::optional<std::string>* view = textView(window);
  return view != nullptr ? *view : std::nullopt;
}

bool HeadlessHost::appendToTextView(UInt8 window, const std::string& text) {
  std::lock_guard lock(mutex_);
  std::optional<std::string>* view = textView(window);
  if (view == nullptr || !*view) return false;
  **view += text;
  return true;
}

bool HeadlessHost::clearTextView(UInt8 window) {
  std::lock_guard lock(mutex_);
  std::optional<std::string>* view = textView(window);
  if (view == nullptr || !*view) return false;
  (*view)->clear();
  return true;
}

void HeadlessHost::preparePasteboardView() {
  clearTextView(PasteboardWindowNumber);
}

}  // namespace rvtools
