// rvtools: the headless host, for tests, benchmarks and programs without a display.
//
// It keeps eight off-screen views: asking a view to redraw composes the window's image into
// that view's buffer at once, on the calling thread. Window frames, titles, border colours and
// sounds are recorded so that a caller can look at them.
#pragma once

#include <array>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "rvtools/display.hpp"
#include "rvtools/host.hpp"

namespace rvtools {

class HeadlessHost : public Host {
 public:
  // Resources are looked up in bundlePath/Contents/Resources; an empty path means the
  // <Name>.app folder around the running executable.
  explicit HeadlessHost(std::string bundlePath = {});

  // What the host records about window 0..12.
  struct WindowState {
    std::string Title;
    bool TitleVisible = true;
    WindowFrame Frame;
    t_RGBColor Border;
    bool HasView = false;      // 0..7 only
    int Redraws = 0;           // images composed for the view
    std::vector<UInt8> Image;  // the last composed image, bytes A, R, G, B
  };

  // A copy of what the host holds for a window; an empty record for numbers above 12.
  WindowState windowState(UInt8 window) const;
  // Takes view 0..7 away (or gives it back), as a platform without that view would.
  void setViewPresent(UInt8 window, bool present);
  int beeps() const;
  int clicks() const;

  bool isInterfaceThread() const override;
  void runOnInterfaceThread(const std::function<void()>& work) override;
  PlatformHandle windowHandle(UInt8 window) override;
  PlatformHandle viewHandle(UInt8 window) override;
  void displayView(UInt8 window, bool deferred) override;
  void setWindowTitle(UInt8 window, const std::string& title) override;
  void setWindowTitleVisible(UInt8 window, bool visible) override;
  void setWindowPosition(UInt8 window, Int x, Int y) override;
  void setWindowContentSize(UInt8 window, Int width, Int height) override;
  void bringWindowToFront(UInt8 window) override;
  void centerWindow(UInt8 window) override;
  void setWindowVisible(UInt8 window, bool visible) override;
  WindowFrame windowFrame(UInt8 window) override;
  ScreenSize screenSize() override;
  void setBorderColor(UInt8 window, t_RGBColor color) override;
  std::string bundlePath() override;
  bool playSound(Sound sound) override;
  void systemBeep() override;
  std::string pasteboardText() override;
  void setPasteboardText(const std::string& text) override;

 private:
  static constexpr int WindowCount = 13;
  mutable std::recursive_mutex mutex_;
  std::array<WindowState, WindowCount> windows_;
  std::string bundlePath_;
  std::string pasteboard_;
  int beeps_ = 0;
  int clicks_ = 0;
};

// The whole main of a program without a display: installs a headless host, runs the launch
// sequence, starts `entry` on the program thread and returns 0 when the program has ended.
int runHeadless(int argc, char** argv, std::function<void()> entry);

}  // namespace rvtools
