// SPDX-License-Identifier: MIT
// The installed host, and the host that stands in before one is installed: it has no windows,
// no views, no menus, no text views and no sounds, so every platform request finds nothing.
#include "rvtools/platform.hpp"

#include <stdlib.h>
#include <time.h>

#include <atomic>

namespace rvtools {
namespace {

// Seconds between 1 January 1970 and 1 January 2001.
constexpr double UnixTimeOf2001 = 978307200.0;

class WindowlessHost final : public Host {
 public:
  bool isInterfaceThread() const override { return true; }
  void runOnInterfaceThread(const std::function<void()>& work) override { work(); }
  PlatformHandle windowHandle(UInt8) override { return nullptr; }
  PlatformHandle viewHandle(UInt8) override { return nullptr; }
  void displayView(UInt8, bool) override {}
  void setWindowTitle(UInt8, const std::string&) override {}
  void setWindowTitleVisible(UInt8, bool) override {}
  void setWindowPosition(UInt8, Int, Int) override {}
  void setWindowContentSize(UInt8, Int, Int) override {}
  void bringWindowToFront(UInt8) override {}
  void centerWindow(UInt8) override {}
  void setWindowVisible(UInt8, bool) override {}
  WindowFrame windowFrame(UInt8) override { return {}; }
  ScreenSize screenSize() override { return {}; }
  void setBorderColor(UInt8, t_RGBColor) override {}
  std::string bundlePath() override { return {}; }
  bool playSound(Sound) override { return false; }
  void systemBeep() override {}
  std::string pasteboardText() override { return {}; }
  void setPasteboardText(const std::string&) override {}
  void setPasteboardImage(const t_Image&) override {}
  std::optional<std::vector<std::string>> menuItemTitles(const std::string&) override {
    return std::nullopt;
  }
  void deleteMenuItem(const std::string&, Int) override {}
  UInt8 frontWindow() override { return NoWindow; }
  std::string runFilePanel(const FilePanelRequest&) override { return {}; }
  std::optional<std::string> textViewText(UInt8) override { return std::nullopt; }
  bool appendToTextView(UInt8, const std::string&) override { return false; }
  bool clearTextView(UInt8) override { return false; }
  void preparePasteboardView() override {}
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

double Host::absoluteTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<double>(now.tv_sec) - UnixTimeOf2001 + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::uint32_t Host::randomWord() {
  return arc4random();
}

void Host::setPasteboardScreenText(UInt8, const std::string& screen) {
  setPasteboardText(screen);
}

void setHost(Host& host) {
  installedHost().store(&host);
}

Host& host() {
  return *installedHost().load();
}

}  // namespace rvtools
