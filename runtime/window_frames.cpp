// SPDX-License-Identifier: MIT
// Window frame operations: position, size, title, visibility and order of the platform windows
// 0..12. The platform work is the host's; a number without a window is refused with
// "<operation>: Window does not exist.". Showing or hiding a graphic window also sets its
// record's Visible, since an invisible window composes no picture.
#include "runtime/window_frames.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <mutex>

#include "runtime/arithmetic.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

bool windowExists(const char* operation, UInt8 window) {
  if (window <= MainWindowNumber && host().windowHandle(window) != nullptr) return true;
  logLine(operation, ": Window does not exist.");
  return false;
}

// Positions and sizes reach the host within the range of 32-bit coordinates, the range of every
// window system; a frame beyond it could be shown on no screen anyway.
Int screenCoordinate(Int value) {
  return std::clamp<Int>(value, std::numeric_limits<std::int32_t>::min(),
                         std::numeric_limits<std::int32_t>::max());
}

// A graphic window's drawing area with its border on both sides.
Int withBorders(Int size, Int border) {
  return saturatingSum(size, saturatingProduct(border, 2));
}

// The titles the program gave graphic windows 0..7, for the hosts that draw the title
// themselves. Created once and never destroyed, as every global of the runtime.
struct GraphicWindowTitles {
  std::mutex Mutex;
  std::array<std::string, GraphicWindowCount> Titles;
};

GraphicWindowTitles& graphicWindowTitles() {
  static auto* titles = new GraphicWindowTitles;
  return *titles;
}

void markVisible(UInt8 window, bool visible) {
  if (window >= GraphicWindowCount) return;
  Windows[window].Visible = visible;
  markPictureChanged(window);
}

}  // namespace

void t_WindowPos(UInt8 window, Int x, Int y) {
  if (!windowExists("t_WindowPos", window)) return;
  host().setWindowPosition(window, screenCoordinate(x), screenCoordinate(y));
}

// For a graphic window the size is that of its drawing area, and the border is added around
// it; the other windows take the size as it is.
void t_WindowSize(UInt8 window, Int x, Int y, Int width, Int height) {
  if (!windowExists("t_WindowSize", window)) return;
  if (x >= 0 && y >= 0) host().setWindowPosition(window, screenCoordinate(x), screenCoordinate(y));
  if (window < GraphicWindowCount) {
    width = withBorders(width, Windows[window].BorderWidth);
    height = withBorders(height, Windows[window].BorderHeight);
  }
  host().setWindowContentSize(window, screenCoordinate(width), screenCoordinate(height));
}

void t_WindowTitle(UInt8 window, const std::string& title) {
  if (!windowExists("t_WindowTitle", window)) return;
  if (window < GraphicWindowCount) {
    GraphicWindowTitles& titles = graphicWindowTitles();
    std::lock_guard lock(titles.Mutex);
    titles.Titles[window] = title;
  }
  host().setWindowTitle(window, title);
}

void t_WindowTitleVisible(UInt8 window, bool visible) {
  if (!windowExists("t_WindowTitleVisible", window)) return;
  host().setWindowTitleVisible(window, visible);
}

void t_WindowFront(UInt8 window) {
  if (!windowExists("t_WindowFront", window)) return;
  markVisible(window, true);
  host().bringWindowToFront(window);
}

void t_WindowCenter(UInt8 window) {
  if (!windowExists("t_WindowCenter", window)) return;
  host().centerWindow(window);
}

void t_WindowVisible(UInt8 window, bool visible) {
  if (!windowExists("t_WindowVisible", window)) return;
  markVisible(window, visible);
  host().setWindowVisible(window, visible);
}

t_WindowInformation t_WindowInfo(UInt8 window) {
  if (!windowExists("t_WindowInfo", window)) return {};
  return {host().windowFrame(window), host().screenSize()};
}

std::string graphicWindowTitle(UInt8 window) {
  if (window >= GraphicWindowCount) return {};
  GraphicWindowTitles& titles = graphicWindowTitles();
  std::lock_guard lock(titles.Mutex);
  return titles.Titles[window];
}

}  // namespace rvtools
