// SPDX-License-Identifier: MIT
// The display refresh: a loop on a thread of its own asks the view of every initialised window
// with AutoUpdate to redraw once per 1000 / RefreshRate milliseconds. VerticalBlank is the only
// handshake: while a view composes its picture the flag is false and the loop leaves that
// window alone. The loop counts the frames it asks for, so that a program can wait for the next
// one (t_WaitFrame).
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
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

// The frames the loop has asked each window's view to show.
std::array<std::atomic<std::uint64_t>, GraphicWindowCount>& refreshedFrames() {
  static auto* frames = new std::array<std::atomic<std::uint64_t>, GraphicWindowCount>{};
  return *frames;
}

Int refreshInterval(const t_Window& record) {
  const Int rate = record.RefreshRate;
  return rate == 0 ? 0 : 1000 / rate;
}

bool isDue(const t_Window& record, Int now) {
  return saturatingDifference(now, record.UpdateStarted) >= refreshInterval(record);
}

// Whether the loop asks the window's view for frames by itself.
bool isRefreshed(const t_Window& record) {
  return MemoryInitialized && AutoUpdateRunning && record.Initialized && record.AutoUpdate;
}

// The longest t_WaitFrame waits: two of the window's intervals and a margin for a busy
// machine. Only a view that stays busy composing (VerticalBlank false) misses a frame that
// long, and it does not stall the program.
Int frameWaitLimit(const t_Window& record) {
  return 2 * std::max<Int>(refreshInterval(record), 0) + 250;
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
    refreshedFrames()[n].fetch_add(1, std::memory_order_relaxed);
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

// The window may leave the refresh while this waits (the program's handlers run on threads of
// their own), so each step looks again.
void t_WaitFrame(UInt8 window) {
  const t_Window* record = checkedWindow("t_WaitFrame", window);
  if (record == nullptr) return;
  const std::atomic<std::uint64_t>& frames = refreshedFrames()[window];
  const std::uint64_t shown = frames.load(std::memory_order_relaxed);
  const Int deadline = t_Timer() + frameWaitLimit(*record);
  while (frames.load(std::memory_order_relaxed) == shown && isRefreshed(*record) &&
         t_Timer() < deadline) {
    sleepFor(0, 1000000);
  }
}

void setFrameListener(std::function<void(UInt8 window)> listener) {
  frameListener().set(std::move(listener));
}

}  // namespace rvtools
