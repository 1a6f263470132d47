// SPDX-License-Identifier: MIT
// The display refresh: a loop on a thread of its own asks the view of every initialised window
// with AutoUpdate to redraw once per 1000 / RefreshRate milliseconds. VerticalBlank is the only
// handshake: while a view composes its picture the flag is false and the loop leaves that
// window alone.
#include <functional>

#include "runtime/arithmetic.hpp"
#include "runtime/clock.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "runtime/threads.hpp"
#include "rvtools/display.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

HandlerSlot<void(UInt8)>& frameListener() {
  static auto* listener = new HandlerSlot<void(UInt8)>;
  return *listener;
}

// Asks the view to show its picture and tells the frame listener.
void display(UInt8 window, bool deferred) {
  host().displayView(window, deferred);
  frameListener().callIfSet(window);
}

bool isDue(const t_Window& record, Int now) {
  const Int rate = record.RefreshRate;
  const Int interval = rate == 0 ? 0 : 1000 / rate;
  return saturatingDifference(now, record.UpdateStarted) >= interval;
}

// One pass over the eight windows; true when any view was asked to redraw.
bool refreshDueWindows() {
  bool refreshed = false;
  for (UInt8 n = 0; n < GraphicWindowCount; ++n) {
    t_Window& record = Windows[n];
    if (!record.Initialized || !record.AutoUpdate || !record.VerticalBlank) continue;
    if (!isDue(record, absoluteMilliseconds())) continue;
    if (host().viewHandle(n) == nullptr) {
      logLine("t_WindowAutoUpdateProcess: Window #", n, " view is nil, resource undefined.");
      continue;
    }
    record.UpdateStarted = absoluteMilliseconds();
    display(n, true);
    refreshed = true;
  }
  return refreshed;
}

}  // namespace

void t_WindowAutoUpdateProcess() {
  logLine("t_WindowAutoUpdateProcess: Start.");
  if (CurrentThreadNumber() >= 3) nameCurrentThread("t_WindowAutoUpdate");
  AutoUpdateRunning = true;
  while (MemoryInitialized && AutoUpdateRunning) {
    if (!refreshDueWindows()) sleepFor(0, 1000000);
  }
  AutoUpdateRunning = false;
  logLine("t_WindowAutoUpdateProcess: End.");
}

void t_WindowUpdate(UInt8 window, bool deferred) {
  if (!MemoryInitialized) return;
  if (window >= GraphicWindowCount) {
    logLine("t_WindowUpdate: Window is not a graphic window.");
    return;
  }
  if (host().viewHandle(window) == nullptr) {
    logLine("t_WindowUpdate: Window #", window, " view is nil, resource undefined.");
    return;
  }
  markPictureChanged(window);
  display(window, deferred);
}

void setFrameListener(std::function<void(UInt8 window)> listener) {
  frameListener().set(std::move(listener));
}

}  // namespace rvtools
