// SPDX-License-Identifier: MIT
// rvtools: runtime state, the program thread, window frames, utilities, time, auxiliary windows.
//
// The runtime keeps its whole state in process-wide globals that are created once and never
// freed: eight window records, one shared video memory, the palette, the event queues and a
// few flags. The user program runs on a thread of its own (`startprocess`); how it sets up its
// memory and windows and how it ends is in rvtools/lifecycle.hpp.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rvtools/platform.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Global state

inline constexpr Int VideoMemorySize = 0x100000F;
inline constexpr Int TopOfVideoMemory = 0xFFFFFF;
inline constexpr Int ProgramThreadStackSize = 1073741824;

extern std::array<t_Window, GraphicWindowCount>& Windows;  // record n: graphic window n
extern std::vector<UInt8>& VideoMemory;  // empty until t_InitMemory, then 0x100000F bytes
extern Int HighMemory;                   // highest address not yet given to a window
extern Relaxed<bool> MemoryInitStarted;
extern Relaxed<bool> MemoryInitialized;
extern Relaxed<bool> ToolsInitialized;
extern Relaxed<bool> AutoUpdateRunning;  // the refresh thread runs
extern Relaxed<UInt8> DefaultWindow;     // the first window initialised; 255 until then
extern std::function<void()>& ProgramEntry;
extern Relaxed<bool> ProgramStartPending;
extern Relaxed<Int> ProgramStackSize;
extern Relaxed<Int> LastRandom;
extern Relaxed<bool> ApplicationActive;
extern Relaxed<bool> LaunchFinished;
extern Relaxed<Int> TitleBarDelta;
extern std::function<void()>& TerminationHandler;
extern std::vector<UInt8>& UpperCaseTable;
extern std::vector<UInt8>& LowerCaseTable;
extern std::vector<UInt8>& HexDigits;
extern std::vector<Int>& DigitValues;
extern std::vector<t_MenuAction>& MenuActions;

// The 16-colour palette: colour number to red, green and blue.
extern const std::array<UInt8, 16> PaletteRed;
extern const std::array<UInt8, 16> PaletteGreen;
extern const std::array<UInt8, 16> PaletteBlue;
// Palette colour n as an opaque colour; 16 and above give black.
t_RGBColor PaletteColor(Int n);

// ---------------------------------------------------------------------------------------------
// Event queues: first in, first out, safe to fill on one thread and take on another. Each
// keeps its pending flag equal to "not empty".

template <typename Event>
class EventQueueOf {
 public:
  explicit EventQueueOf(Relaxed<bool>& pending) : pending_(pending) {}

  void append(Event event) {
    std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    pending_ = true;
  }
  std::optional<Event> takeFirst() {
    std::lock_guard lock(mutex_);
    if (events_.empty()) return std::nullopt;
    Event first = std::move(events_.front());
    events_.pop_front();
    pending_ = !events_.empty();
    return first;
  }
  std::optional<Event> last() const {
    std::lock_guard lock(mutex_);
    if (events_.empty()) return std::nullopt;
    return events_.back();
  }
  std::size_t count() const {
    std::lock_guard lock(mutex_);
    return events_.size();
  }
  void clear() {
    std::lock_guard lock(mutex_);
    events_.clear();
    pending_ = false;
  }

 private:
  mutable std::mutex mutex_;
  std::deque<Event> events_;
  Relaxed<bool>& pending_;
};

extern Relaxed<bool> EventPending;
extern EventQueueOf<t_Event>& EventQueue;  // key events of all windows
extern Relaxed<bool> MouseEventPending;
extern EventQueueOf<t_Event>& MouseEventQueue;
extern Relaxed<bool> MenuEventPending;
extern EventQueueOf<t_MenuEvent>& MenuEventQueue;
extern t_Event& LastEvent;  // the event most recently taken by t_GetKey
extern Relaxed<bool> KeyIsDown;
extern Relaxed<bool> CapsLockDown, ShiftDown, ControlDown, OptionDown, CommandDown, FnDown;
extern Relaxed<bool> LeftMouseDown, RightMouseDown;

// ---------------------------------------------------------------------------------------------
// Handler slots

// A handler that one thread installs while others call it. A call runs a copy of the handler
// installed at that moment, without the lock, so that a handler may install another.
template <typename Signature>
class HandlerSlot {
 public:
  using Handler = std::function<Signature>;

  // Installs a handler; an empty one leaves the slot empty.
  void set(Handler handler) {
    std::lock_guard lock(mutex_);
    handler_ = std::move(handler);
  }
  bool isSet() const {
    std::lock_guard lock(mutex_);
    return static_cast<bool>(handler_);
  }
  // The installed handler; empty when none is.
  Handler current() const {
    std::lock_guard lock(mutex_);
    return handler_;
  }
  // Calls the installed handler, if any; says whether there was one.
  template <typename... Arguments>
  bool callIfSet(Arguments&&... arguments) const {
    const Handler handler = current();
    if (handler) handler(std::forward<Arguments>(arguments)...);
    return static_cast<bool>(handler);
  }

 private:
  mutable std::mutex mutex_;
  Handler handler_;
};

// ---------------------------------------------------------------------------------------------
// Start-up and the program thread

void initrvtools();                                             // fills the character tables
void startprocess(std::function<void()> entry, Int stackSize);  // starts a program thread
void startprocessasync(std::function<void()> entry);            // runs a callback on a worker
Int CurrentThreadNumber();                                      // 1 interface, 2 program, ...
void t_Beep();                                                  // the system beep sound
void t_PlayClick();                                             // the click sound, or a beep
void t_Log(const std::string& line);  // writes one line to the runtime's log

// ---------------------------------------------------------------------------------------------
// Window frame operations (numbers 0..12)

void t_WindowPos(UInt8 window, Int x, Int y);                          // moves the window
void t_WindowSize(UInt8 window, Int x, Int y, Int width, Int height);  // drawing size; x, y -1 keep
void t_WindowTitle(UInt8 window, const std::string& title);            // sets the title
void t_WindowTitleVisible(UInt8 window, bool visible);  // shows or hides the title bar
void t_WindowFront(UInt8 window);                       // shows it in front
void t_WindowCenter(UInt8 window);                      // centres it on the screen
void t_WindowVisible(UInt8 window, bool visible);       // shows or hides it
// The window's frame and the screen's size; a zero frame for a number without a window.
struct t_WindowInformation {
  WindowFrame Frame;
  ScreenSize Screen;
};
t_WindowInformation t_WindowInfo(UInt8 window);

// ---------------------------------------------------------------------------------------------
// Random numbers and text utilities (positions count from 1; 0 is "not found")

Int t_Random(Int n);                                    // 0..n; LastRandom for n = 0
void t_Randomize(Int seed);                             // t_Random draws from a seeded generator
std::vector<UInt8> TextToBytes(std::string_view text);  // UTF-8 bytes
Int BytesToInteger(const std::vector<UInt8>& bytes);    // leading blanks, '-', digits
Int TextPosition(std::string_view text, std::string_view pattern, Int start);
std::string TextMiddle(std::string_view text, Int start, Int length);
std::string RealToText(double value);  // shortest form, decimal comma
std::string ByteToHex(UInt8 value);    // two upper-case digits
std::string HexText(Int value);        // eight upper-case digits, low 32 bits
// What the UTF-8 sequence at the front of some bytes is.
enum class Utf8Status {
  Scalar,      // a well-formed sequence of Length bytes
  Invalid,     // the first byte starts no well-formed sequence; Length 1
  Incomplete,  // the bytes end inside a well-formed beginning, or are empty; Length 0
};
struct Utf8Sequence {
  Utf8Status Status = Utf8Status::Incomplete;
  char32_t Scalar = 0;
  std::size_t Length = 0;
};
// Reads the sequence at the front of `bytes`. Overlong forms, surrogates, values beyond
// U+10FFFF and stray continuation bytes are invalid; a reader of a stream keeps an incomplete
// tail for the bytes that come next.
Utf8Sequence decodeUtf8(std::string_view bytes);
// The Unicode scalars of UTF-8 text; a byte that starts no valid sequence becomes U+FFFD.
std::vector<char32_t> scalarsOf(std::string_view text);
// The UTF-8 form of one scalar; a value that is no scalar becomes U+FFFD.
std::string utf8Of(char32_t scalar);

// ---------------------------------------------------------------------------------------------
// Time, from a clock that only goes forward

Int t_Timer();                  // whole milliseconds since the program started
void t_Wait(Int milliseconds);  // sleeps; at or below 0 it returns at once

// ---------------------------------------------------------------------------------------------
// Auxiliary windows and files

void t_PrinterPrint(const std::string& text);  // appends to the virtual printer's paper
void t_ConsolePrint(const std::string& text);  // appends to the system console
void t_PrinterClear();                         // empties the virtual printer
void t_ConsoleClear();                         // empties the system console
std::string t_PasteboardText();                // the general pasteboard's plain text
void t_SetPasteboardText(const std::string& text);
std::vector<UInt8> t_ReadFile(const std::string& path);  // the whole file; empty on failure

}  // namespace rvtools
