// Window frame operations: position, size, title, visibility and order of the platform windows
// 0..12. The platform work is the host's; a number without a window is refused with
// "<operation>: Window does not exist.". Showing or hiding a graphic window also sets its
// record's Visible, since an invisible window composes no picture.
#include <cstdint>

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

Int wrappingSum(Int a, std::uint64_t b) {
  return static_cast<Int>(static_cast<std::uint64_t>(a) + b);
}

void markVisible(UInt8 window, bool visible) {
  if (window >= 8) return;
  Windows[window].Visible = visible;
  markPictureChanged(window);
}

}  // namespace

void t_WindowPos(UInt8 window, Int x, Int y) {
  if (!windowExists("t_WindowPos", window)) return;
  host().setWindowPosition(window, x, y);
}

// For a graphic window the size is that of its drawing area, and the border is added around
// it; the other windows take the size as it is.
void t_WindowSize(UInt8 window, Int x, Int y, Int width, Int height) {
  if (!windowExists("t_WindowSize", window)) return;
  if (x >= 0 && y >= 0) host().setWindowPosition(window, x, y);
  if (window < 8) {
    width = wrappingSum(width, 2 * static_cast<std::uint64_t>(Windows[window].BorderWidth));
    height = wrappingSum(height, 2 * static_cast<std::uint64_t>(Windows[window].BorderHeight));
  }
  host().setWindowContentSize(window, width, height);
}

void t_WindowTitle(UInt8 window, const std::string& title) {
  if (!windowExists("t_WindowTitle", window)) return;
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

}  // namespace rvtools
