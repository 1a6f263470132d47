// SPDX-License-Identifier: MIT
// rvtools: the records that every part of the runtime shares.
//
// A graphic window is described by one `t_Window` record; fonts by `t_Font`; keyboard and mouse
// events by `t_Event`; menu choices by `t_MenuEvent`. Scalar fields that another thread reads
// (the refresh, the views, the event handlers) are `Relaxed` atomics, so that plain code such as
// `Windows[0].VerticalBlank = true` stays plain while the threads never tear a field.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace rvtools {

using Int = std::int64_t;
using UInt8 = std::uint8_t;

// A value that one thread writes and others read, with relaxed ordering. It copies like the
// plain value it holds; read-modify-write operators assume a single writer.
template <typename T>
class Relaxed {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  constexpr Relaxed(T value = T{}) noexcept : value_(value) {}
  Relaxed(const Relaxed& other) noexcept : value_(other.load()) {}
  Relaxed& operator=(const Relaxed& other) noexcept {
    store(other.load());
    return *this;
  }
  Relaxed& operator=(T value) noexcept {
    store(value);
    return *this;
  }
  operator T() const noexcept { return load(); }

  T load() const noexcept { return value_.load(std::memory_order_relaxed); }
  void store(T value) noexcept { value_.store(value, std::memory_order_relaxed); }

  Relaxed& operator+=(T delta) noexcept requires std::is_arithmetic_v<T> {
    store(load() + delta);
    return *this;
  }
  Relaxed& operator-=(T delta) noexcept requires std::is_arithmetic_v<T> {
    store(load() - delta);
    return *this;
  }
  Relaxed& operator++() noexcept requires std::is_arithmetic_v<T> { return *this += 1; }
  Relaxed& operator--() noexcept requires std::is_arithmetic_v<T> { return *this -= 1; }

 private:
  std::atomic<T> value_;
};

// An opaque reference to a platform object (window or view); null when there is none.
using PlatformHandle = const void*;

// A colour: alpha, red, green, blue.
struct t_RGBColor {
  UInt8 Alpha = 255;
  UInt8 Red = 0;
  UInt8 Green = 0;
  UInt8 Blue = 0;
  friend bool operator==(const t_RGBColor&, const t_RGBColor&) = default;
};

// A byte string.
struct Text {
  std::vector<UInt8> Elements;
  friend bool operator==(const Text&, const Text&) = default;
};

// An immutable byte array shared between copies, as a font's glyph data is.
class SharedBytes {
 public:
  SharedBytes() = default;
  explicit SharedBytes(std::vector<UInt8> bytes)
      : bytes_(bytes.empty() ? nullptr
                             : std::make_shared<const std::vector<UInt8>>(std::move(bytes))) {}

  bool empty() const noexcept { return !bytes_; }
  std::size_t size() const noexcept { return bytes_ ? bytes_->size() : 0; }
  const UInt8* data() const noexcept { return bytes_ ? bytes_->data() : nullptr; }
  UInt8 operator[](std::size_t index) const noexcept { return (*bytes_)[index]; }
  const std::vector<UInt8>& vector() const;
  // The identity of the shared array, equal for copies of the same data.
  const void* identity() const noexcept { return bytes_.get(); }
  const std::shared_ptr<const std::vector<UInt8>>& shared() const noexcept { return bytes_; }

 private:
  std::shared_ptr<const std::vector<UInt8>> bytes_;
};

// A loaded bitmap font. Glyph data of format 2 holds one grey byte per pixel; the glyph of code
// c starts at c x Width x Height.
struct t_Font {
  Int HeaderSize = 16;
  std::vector<UInt8> Identifier = {'r', 'v', 'f', 'n'};
  Int Format = 0;
  Int Size = 0;
  UInt8 Start = 0;
  UInt8 End = 0;
  Int Width = 0;
  Int Height = 0;
  Int Reserved = 0;
  SharedBytes Data;
};

// The area of a view into which the window's image is drawn.
struct t_Rect {
  double X = 0, Y = 0, Width = 0, Height = 0;
};

// Graphic windows are numbered 0 to GraphicWindowCount - 1.
inline constexpr UInt8 GraphicWindowCount = 8;
// The largest picture side, in pixels, that a window has and the runtime composes.
inline constexpr Int LargestPictureSide = 8192;

// The record of one graphic window, 53 fields with their initial values.
struct t_Window {
  Relaxed<bool> Initialized = false;
  Relaxed<bool> Visible = false;
  Relaxed<bool> IgnoreEvents = false;
  Relaxed<bool> AutoUpdate = false;
  Relaxed<bool> QuickUpdate = false;
  Relaxed<bool> ScrollLock = false;
  Relaxed<bool> VerticalBlank = true;
  Relaxed<Int> UpdateStarted = 0;
  Relaxed<Int> UpdateFinished = 0;
  Relaxed<Int> UpdateDuration = 0;
  Relaxed<Int> RefreshRate = 30;
  Relaxed<PlatformHandle> Window = nullptr;
  Relaxed<PlatformHandle> View = nullptr;
  t_Rect DrawingRect;
  Relaxed<Int> TitleHeight = 0;
  Relaxed<Int> BorderWidth = 0;
  Relaxed<Int> BorderHeight = 0;
  t_RGBColor RGBColorBorder;
  Relaxed<Int> BitDepth = 0;
  Relaxed<Int> Width = 0;
  Relaxed<Int> Height = 0;
  t_RGBColor RGBColor;
  Relaxed<Int> DrawingMode = 0;
  Relaxed<Int> PositionX = 0;
  Relaxed<Int> PositionY = 0;
  Relaxed<Int> MemoryStart = -1;
  Relaxed<Int> MemoryEnd = -1;
  t_Font Font;
  Relaxed<Int> TextWidth = 0;
  Relaxed<Int> TextHeight = 0;
  Relaxed<Int> TextFirstColumn = 0;
  Relaxed<Int> TextLastColumn = 0;
  Relaxed<Int> TextFirstLine = 0;
  Relaxed<Int> TextLastLine = 0;
  Relaxed<Int> TextHpos = 0;
  Relaxed<Int> TextVpos = 0;
  Relaxed<UInt8> TextColor = 0;
  Relaxed<bool> TextInverse = false;
  Relaxed<Int> TextDisplayMode = 0;
  Relaxed<Int> TextCursorLevel = 0;
  Relaxed<Int> TextRedirectOutput = 1;
  std::string InputString;
  Relaxed<bool> InputFinished = false;
  Relaxed<Int> InputMode = 0;
  Relaxed<Int> InputHpos = 0;
  Relaxed<Int> InputVpos = 0;
  Relaxed<Int> InputCursorPos = 0;
  Relaxed<Int> InputMaxCharacters = 0;
  Relaxed<Int> LoResOffsetX = 0;
  Relaxed<Int> LoResOffsetY = 0;
  Relaxed<Int> LoResMode = 0;
  Relaxed<Int> TextMemoryStart = -1;
  Relaxed<Int> TextMemoryEnd = -1;
};

// The Kind of an event: a key (t_Event), a click (t_Event) or a menu choice (t_MenuEvent).
inline constexpr Int KeyEventKind = 1;
inline constexpr Int MouseEventKind = 2;
inline constexpr Int MenuEventKind = 3;

// One keyboard (Kind 1) or mouse (Kind 2) event.
struct t_Event {
  Int Kind = 0;
  Int Index = 0;
  std::string Description;
  Int Value = 0;
  Int WindowX = 0;
  Int WindowY = 0;
  Int ClickX = 0;
  Int ClickY = 0;
  Int Mods = 0;
  UInt8 Window = 0;
  Int Time = 0;
  bool CloseBox = false;
  bool CapsLockPressed = false;
  bool ShiftPressed = false;
  bool ControlPressed = false;
  bool OptionPressed = false;
  bool CommandPressed = false;
  bool NumericPadPressed = false;
  bool HelpPressed = false;
  bool FnPressed = false;
  bool CursorKeyPressed = false;
  bool FunctionKeyPressed = false;
};

// One menu choice as the program sees it (Kind 3; 0 for an item that belongs to no menu).
struct t_MenuEvent {
  Int Kind = 0;
  std::string MenuTitle;
  std::string ItemTitle;
  std::string ItemKeyChar;
  std::uint64_t ItemKeyMods = 0;
  Int ItemKeyAsc = 0;
  Int ItemAction = 0;
  Int Time = 0;
};

// One entry of the table of built-in menu actions.
struct t_MenuAction {
  Int Tag = 0;
  Int Action = 0;
  std::string Title;
  std::string Note;
  std::string FileName;
  std::string FileTypes;
  std::string FilePath;
};

}  // namespace rvtools

template <>
struct std::hash<rvtools::Text> {
  std::size_t operator()(const rvtools::Text& text) const noexcept;
};
