// SPDX-License-Identifier: MIT
// The installed host, the defaults of the host's optional parts, and the host that stands in
// before one is installed: it has no windows and no views, so every platform request finds
// nothing.
#include "rvtools/platform.hpp"

#include <stdlib.h>
#include <time.h>

#include <array>
#include <atomic>

namespace rvtools {
namespace {

// Seconds between 1 January 1970 and 1 January 2001.
constexpr double UnixTimeOf2001 = 978307200.0;

// The handles of the default window lookup: one distinct address for each window and view.
std::array<char, MainWindowNumber + 1> windowMarkers;
std::array<char, GraphicWindowCount> viewMarkers;

class WindowlessHost final : public Host {
 public:
  bool isInterfaceThread() const override { return true; }
  void runOnInterfaceThread(const std::function<void()>& work) override { work(); }
  void displayView(UInt8, bool) override {}
  void setWindowTitle(UInt8, const std::string&) override {}
  void setWindowContentSize(UInt8, Int, Int) override {}
  void setWindowVisible(UInt8, bool) override {}
  void bringWindowToFront(UInt8) override {}
  WindowFrame windowFrame(UInt8) override { return {}; }
  UInt8 frontWindow() override { return NoWindow; }
  PlatformHandle windowHandle(UInt8) override { return nullptr; }
  PlatformHandle viewHandle(UInt8) override { return nullptr; }
};

Host& windowlessHost() {
  static auto* host = new WindowlessHost;
  return *host;
}

std::atomic<Host*>& installedHost() {
  static auto* host = new std::atomic<Host*>(&windowlessHost());
  return *host;
}

}  // namespace

PlatformHandle Host::windowHandle(UInt8 window) {
  return window <= MainWindowNumber ? &windowMarkers[window] : nullptr;
}

PlatformHandle Host::viewHandle(UInt8 window) {
  return window < viewMarkers.size() ? &viewMarkers[window] : nullptr;
}

void Host::setWindowTitleVisible(UInt8, bool) {}
void Host::setWindowPosition(UInt8, Int, Int) {}
void Host::centerWindow(UInt8) {}

ScreenSize Host::screenSize() {
  return {};
}

void Host::setBorderColor(UInt8, t_RGBColor) {}

std::string Host::bundlePath() {
  return bundleAroundExecutable();
}

bool Host::playSound(Sound) {
  return false;
}

void Host::systemBeep() {}

bool Host::startSoundOutput() {
  return false;
}

std::string Host::pasteboardText() {
  std::lock_guard lock(pasteboardMutex_);
  return pasteboard_;
}

void Host::setPasteboardText(const std::string& text) {
  std::lock_guard lock(pasteboardMutex_);
  pasteboard_ = text;
}

void Host::setPasteboardImage(const t_Image&) {
  setPasteboardText({});
}

void Host::setPasteboardScreenText(UInt8, const std::string& screen) {
  setPasteboardText(screen);
}

std::optional<std::vector<std::string>> Host::menuItemTitles(const std::string&) {
  return std::nullopt;
}

void Host::deleteMenuItem(const std::string&, Int) {}

std::string Host::runFilePanel(const FilePanelRequest&) {
  return {};
}

std::optional<std::string> Host::textViewText(UInt8) {
  return std::nullopt;
}

bool Host::appendToTextView(UInt8, const std::string&) {
  return false;
}

bool Host::clearTextView(UInt8) {
  return false;
}

void Host::preparePasteboardView() {}

double Host::absoluteTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<double>(now.tv_sec) - UnixTimeOf2001 + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::uint32_t Host::randomWord() {
  return arc4random();
}

void setHost(Host& host) {
  installedHost().store(&host);
}

Host& host() {
  return *installedHost().load();
}

}  // namespace rvtools
