// SPDX-License-Identifier: MIT
// Mouse events and the close box: a click in a view becomes a Kind 2 event on MouseEventQueue,
// with its position both in window coordinates and in the drawing area, and the program's mouse
// handler is started on a worker after every click. A close box hides its window and is only
// logged. Depends on the runtime's globals, the log, the thread registry and the window frame
// operations.

#include "runtime/arithmetic.hpp"
#include "runtime/clock.hpp"
#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/input.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

constexpr Int BeforeArea = -1;
constexpr Int BeyondArea = -2;
constexpr Int NoPosition = -3;

// The handler is replaced by the program thread while workers call it; every worker calls the
// handler that is current when it starts.
HandlerSlot<void()>& ProgramMouseHandler() {
  static auto* handler = new HandlerSlot<void()>;
  return *handler;
}

// One axis of the drawing area: -1 before it, -2 beyond it, else the position.
Int areaCoordinate(Int position, Int size) {
  if (position < 0) return BeforeArea;
  if (position >= size) return BeyondArea;
  return position;
}

t_Event mouseEvent(UInt8 window, const t_MouseClick& click, Int absX, Int absY, Int clickX,
                   Int clickY) {
  const Int flags = click.ModifierFlags;
  t_Event event;
  event.Kind = MouseEventKind;
  event.Index = click.Buttons;
  event.WindowX = absX;
  event.WindowY = absY;
  event.ClickX = clickX;
  event.ClickY = clickY;
  event.Mods = (flags >> 16) & 0xFFFF;
  event.Window = window;
  event.Time = absoluteMilliseconds();
  event.CapsLockPressed = (flags & CapsLockFlag) != 0;
  event.ShiftPressed = (flags & ShiftFlag) != 0;
  event.ControlPressed = (flags & ControlFlag) != 0;
  event.OptionPressed = (flags & OptionFlag) != 0;
  event.CommandPressed = (flags & CommandFlag) != 0;
  event.NumericPadPressed = (flags & NumericPadFlag) != 0;
  event.HelpPressed = (flags & HelpFlag) != 0;
  // For mouse events the function modifier is reported here and not in FnPressed.
  event.FunctionKeyPressed = (flags & FunctionFlag) != 0;
  return event;
}

void runProgramMouseHandler() {
  if (CurrentThreadNumber() >= 3) nameCurrentThread("t_EventMouse");
  ProgramMouseHandler().callIfSet();
}

}  // namespace

void viewMouseDown(UInt8 window, const t_MouseClick& click, double x, double y, bool right) {
  if (MemoryInitialized && window < GraphicWindowCount) {
    if (!Windows[window].Initialized) {
      logLine("viewMouseDown: Graphic window (", window, ") not initialized.");
    } else if (!Windows[window].IgnoreEvents) {
      t_MouseEventHandler(window, click, x, y);
    }
  }
  LeftMouseDown = !right;
  RightMouseDown = right;
}

void viewMouseUp() {
  LeftMouseDown = false;
  RightMouseDown = false;
}

void t_MouseEventHandler(UInt8 window, const t_MouseClick& click, double x, double y) {
  const Int absX = truncatedCoordinate(x), absY = truncatedCoordinate(y);
  Int clickX = NoPosition, clickY = NoPosition;
  std::string source;
  if (window >= GraphicWindowCount) {
    logLine("t_MouseEventHandler: Unknown window, AbsX = ", absX, ", AbsY = ", absY);
  } else if (!MemoryInitialized || !Windows[window].Initialized) {
    logLine("t_MouseEventHandler: Window #", window, " not initialized.");
  } else {
    const t_Window& record = Windows[window];
    // The vertical axis is flipped, so that 0 is the top row of the drawing area.
    clickX = areaCoordinate(saturatingDifference(absX, record.BorderWidth), record.Width);
    clickY = areaCoordinate(
        saturatingSum(record.BorderHeight, saturatingDifference(record.Height, absY)),
        record.Height);
    source = "Graphic #" + std::to_string(window);
    MouseEventQueue.append(mouseEvent(window, click, absX, absY, clickX, clickY));
  }
  logLine("t_MouseEventHandler: ", source, " window, X = ", clickX, ", Y = ", clickY);
  MouseEventPending = MouseEventQueue.count() > 0;
  startprocessasync(runProgramMouseHandler);
  logLine("t_MouseEventHandler: Calling program mouse handler asynchronously.");
}

void t_MouseEventPostCloseBoxClick(UInt8 window) {
  t_WindowVisible(window, false);
  logLine("t_MouseEventPostCloseBoxClick: Window = ", window);
}

void t_SetMouseHandler(std::function<void()> handler) {
  ProgramMouseHandler().set(std::move(handler));
}

std::optional<t_Event> t_TakeMouseEvent() {
  return MouseEventQueue.takeFirst();
}

}  // namespace rvtools
