// SPDX-License-Identifier: MIT
// The runtime's process-wide state. Every global is created once and deliberately never
// destroyed, so that a thread still running while the process exits never meets a destroyed
// object.
#include "rvtools/runtime.hpp"

#include <functional>

namespace rvtools {

std::array<t_Window, 8>& Windows = *new std::array<t_Window, 8>;
std::vector<UInt8>& VideoMemory = *new std::vector<UInt8>;
Int HighMemory = TopOfVideoMemory;
Relaxed<bool> MemoryInitStarted = false;
Relaxed<bool> MemoryInitialized = false;
Relaxed<bool> ToolsInitialized = false;
Relaxed<bool> AutoUpdateRunning = false;
Relaxed<UInt8> DefaultWindow = 255;
std::function<void()>& ProgramEntry = *new std::function<void()>([] {});
Relaxed<bool> ProgramStartPending = false;
Relaxed<Int> ProgramStackSize = 0;
Relaxed<Int> LastRandom = 0;
Relaxed<bool> ApplicationActive = false;
Relaxed<bool> LaunchFinished = false;
Relaxed<Int> TitleBarDelta = 0;
std::function<void()>& TerminationHandler = *new std::function<void()>([] {});
std::vector<UInt8>& UpperCaseTable = *new std::vector<UInt8>;
std::vector<UInt8>& LowerCaseTable = *new std::vector<UInt8>;
std::vector<UInt8>& HexDigits = *new std::vector<UInt8>;
std::vector<Int>& DigitValues = *new std::vector<Int>;
std::vector<t_MenuAction>& MenuActions = *new std::vector<t_MenuAction>;

const std::array<UInt8, 16> PaletteRed = {0,   255, 0,   255, 0, 84,  0, 0,
                                          128, 255, 168, 255, 0, 255, 0, 255};
const std::array<UInt8, 16> PaletteGreen = {0,  0,   0,   0,   128, 84,  0,   128,
                                            64, 128, 168, 128, 255, 255, 255, 255};
const std::array<UInt8, 16> PaletteBlue = {0, 0, 128, 255, 0, 84, 255, 255,
                                           0, 0, 168, 128, 0, 0,  255, 255};

t_RGBColor PaletteColor(Int n) {
  if (n < 0 || n >= 16) return {255, 0, 0, 0};
  return {255, PaletteRed[n], PaletteGreen[n], PaletteBlue[n]};
}

Relaxed<bool> EventPending = false;
EventQueueOf<t_Event>& EventQueue = *new EventQueueOf<t_Event>(EventPending);
Relaxed<bool> MouseEventPending = false;
EventQueueOf<t_Event>& MouseEventQueue = *new EventQueueOf<t_Event>(MouseEventPending);
Relaxed<bool> MenuEventPending = false;
EventQueueOf<t_MenuEvent>& MenuEventQueue = *new EventQueueOf<t_MenuEvent>(MenuEventPending);
t_Event& LastEvent = *new t_Event;
Relaxed<bool> KeyIsDown = false;
Relaxed<bool> CapsLockDown = false, ShiftDown = false, ControlDown = false, OptionDown = false,
              CommandDown = false, FnDown = false;
Relaxed<bool> LeftMouseDown = false, RightMouseDown = false;

const std::vector<UInt8>& SharedBytes::vector() const {
  static const auto* empty = new std::vector<UInt8>;
  return bytes_ ? *bytes_ : *empty;
}

}  // namespace rvtools

std::size_t std::hash<rvtools::Text>::operator()(const rvtools::Text& text) const noexcept {
  std::size_t hash = std::hash<std::size_t>{}(text.Elements.size());
  for (rvtools::UInt8 element : text.Elements) hash = hash * 31 + element;
  return hash;
}
