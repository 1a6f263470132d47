// SPDX-License-Identifier: MIT
// rvtools: what a host reads of a graphic window, and nothing it could change.
//
// A host shows a window through a WindowView: whether it is ready, its size, depth, border and
// title, its picture version, its picture composed into the host's buffer, its text cells with
// their colour bytes, and which of them hold pixel drawings. The program may change the window
// at any moment, so every answer is read afresh and holds for the moment it was read; a picture
// or cells read while the program draws may be half changed, which the next frame mends.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "rvtools/display.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// A point in window coordinates: from the lower left of the window's content, border included,
// as mouse events report it.
struct WindowPoint {
  double X = 0;
  double Y = 0;
};

// The text cells of a window: one font code and one colour byte (ink in the high four bits,
// paper in the low four) per cell, line by line from the top.
struct ScreenCells {
  Int Columns = 0;
  Int Lines = 0;
  std::vector<UInt8> Codes;
  std::vector<UInt8> Colours;
};

class WindowView {
 public:
  // Any number; a number above 7 names no graphic window and is never ready.
  explicit WindowView(UInt8 window) : window_(window) {}

  UInt8 number() const { return window_; }
  // Whether the video memory and the window are initialised, so that it has a picture.
  bool ready() const;
  bool visible() const;
  // The picture's size in pixels, its depth in bits a pixel and the border on each side; 0
  // while the window is not ready.
  Int width() const;
  Int height() const;
  Int bitDepth() const;
  Int borderWidth() const;
  Int borderHeight() const;
  // The title the program gave the window (t_WindowTitle); empty when it gave none.
  std::string title() const;
  // Changes whenever an operation writes the picture (pictureVersion, rvtools/platform.hpp).
  std::uint64_t pictureVersion() const;

  // Composes the picture into `pixels`, width() x height() x 4 bytes in `order`, with the
  // window's frame marked as being composed meanwhile, so that the refresh leaves it alone.
  // False, with the composition's log line, when there is nothing to show or the buffer does
  // not fit.
  bool composePicture(UInt8* pixels, std::size_t byteCount, PixelOrder order) const;

  // Whether the window has text memory, and its cells (none without).
  bool hasText() const;
  ScreenCells textCells() const;
  // How many picture pixels one text cell covers across and down; 1 without text.
  Int cellWidth() const;
  Int cellHeight() const;
  // Which text cells hold pixel drawings, one flag a cell in the order of textCells() (Columns x
  // Lines, line by line from the top); empty without text. A pixel operation (t_HPlot, t_HLine
  // ...) marks every cell whose pixels it writes, and a glyph drawn into a cell clears it, so a
  // host that draws a window from its cells draws the marked ones from the picture.
  std::vector<bool> pixelCells() const;

  // Picture pixel (x, y), counted from the picture's top left, in window coordinates.
  WindowPoint windowPointOf(double x, double y) const;

 private:
  UInt8 window_;
};

// How long a host may keep showing a picture it composed without composing it again. After
// that it composes anew even at the same version, which also shows what a program wrote
// straight into VideoMemory.
inline constexpr std::chrono::seconds PictureLifetime{1};

// What a host last showed of one window's picture: the version and size it was composed at,
// and when. Any thread may ask whether it is current while the interface thread shows.
class ShownPicture {
 public:
  // Whether the picture shown is the window's picture now: same version and size, and
  // younger than PictureLifetime.
  bool isCurrent(const WindowView& view) const;
  // Notes a picture shown at `version` (read before it was composed, so that a change made
  // meanwhile shows again) and the window's size now.
  void noteShown(const WindowView& view, std::uint64_t version);
  // Composes the window's picture into `pixels` (WindowView::composePicture) and notes it.
  bool compose(const WindowView& view, UInt8* pixels, std::size_t byteCount, PixelOrder order);
  // Makes the next isCurrent false.
  void forget();

 private:
  using Clock = std::chrono::steady_clock;
  std::atomic<bool> shown_{false};
  std::atomic<std::uint64_t> version_{0};
  std::atomic<Int> width_{0};
  std::atomic<Int> height_{0};
  std::atomic<Clock::rep> shownAt_{0};
};

// The window the program initialised first (DefaultWindow) once it is ready; nothing when the
// program ended without one. Looks every 10 milliseconds.
std::optional<UInt8> waitForFirstWindow();

}  // namespace rvtools
