// SPDX-License-Identifier: MIT
// The window view: a graphic window's state as a host reads it, the picture composed with the
// frame marked as being composed, the text cells copied out of the text memory, and what a
// host last showed of a picture. Text memory is read as the image composition reads video
// memory, while the program may write it; every address is checked against the video memory
// first, since the program may initialise the window anew meanwhile.
#include "rvtools/window_view.hpp"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "runtime/checks.hpp"
#include "runtime/pixel_drawings.hpp"
#include "runtime/window_frames.hpp"
#include "rvtools/host_support.hpp"
#include "rvtools/platform.hpp"

namespace rvtools {
namespace {

// The record of a ready window, or null.
const t_Window* readyRecord(UInt8 window) {
  if (window >= GraphicWindowCount || !MemoryInitialized || !Windows[window].Initialized)
    return nullptr;
  return &Windows[window];
}

template <typename Field>
Int fieldOfReady(UInt8 window, Field field) {
  const t_Window* record = readyRecord(window);
  return record != nullptr ? Int{field(*record)} : 0;
}

}  // namespace

bool WindowView::ready() const {
  return readyRecord(window_) != nullptr;
}

bool WindowView::visible() const {
  return window_ < GraphicWindowCount && Windows[window_].Visible;
}

Int WindowView::width() const {
  return fieldOfReady(window_, [](const t_Window& record) { return record.Width.load(); });
}

Int WindowView::height() const {
  return fieldOfReady(window_, [](const t_Window& record) { return record.Height.load(); });
}

Int WindowView::bitDepth() const {
  return fieldOfReady(window_, [](const t_Window& record) { return record.BitDepth.load(); });
}

Int WindowView::borderWidth() const {
  return fieldOfReady(window_, [](const t_Window& record) { return record.BorderWidth.load(); });
}

Int WindowView::borderHeight() const {
  return fieldOfReady(window_, [](const t_Window& record) { return record.BorderHeight.load(); });
}

std::string WindowView::title() const {
  return graphicWindowTitle(window_);
}

std::uint64_t WindowView::pictureVersion() const {
  return rvtools::pictureVersion(window_);
}

// VerticalBlank is false while the picture is composed, so that the refresh thread does not ask
// for another frame of this window meanwhile.
bool WindowView::composePicture(UInt8* pixels, std::size_t byteCount, PixelOrder order) const {
  if (window_ >= GraphicWindowCount) return t_WindowImageInto(window_, pixels, byteCount, order);
  t_Window& record = Windows[window_];
  record.VerticalBlank = false;
  const bool composed = t_WindowImageInto(window_, pixels, byteCount, order);
  record.VerticalBlank = true;
  return composed;
}

bool WindowView::hasText() const {
  const t_Window* record = readyRecord(window_);
  return record != nullptr && record->TextMemoryStart >= 0;
}

ScreenCells WindowView::textCells() const {
  const t_Window* record = readyRecord(window_);
  if (record == nullptr || record->TextMemoryStart < 0) return {};
  const Int columns = record->TextWidth, lines = record->TextHeight;
  const TextCells memory = rvtools::textCells(*record);
  // Both corners of the text inside the character half means every cell is inside.
  if (columns < 1 || lines < 1 || memory.characterAddress(1, 1) < 0 ||
      memory.characterAddress(columns, lines) < 0) {
    return {};
  }
  ScreenCells cells{columns, lines, {}, {}};
  const auto count = static_cast<std::size_t>(columns * lines);
  const UInt8* codes = VideoMemory.data() + memory.characterAddress(1, 1);
  cells.Codes.assign(codes, codes + count);
  cells.Colours.assign(codes + memory.half, codes + memory.half + count);
  return cells;
}

Int WindowView::cellWidth() const {
  const t_Window* record = readyRecord(window_);
  if (record == nullptr || record->TextMemoryStart < 0 || record->TextWidth < 1) return 1;
  return std::max<Int>(record->Width / record->TextWidth, 1);
}

Int WindowView::cellHeight() const {
  const t_Window* record = readyRecord(window_);
  if (record == nullptr || record->TextMemoryStart < 0 || record->TextHeight < 1) return 1;
  return std::max<Int>(record->Height / record->TextHeight, 1);
}

std::vector<bool> WindowView::pixelCells() const {
  const t_Window* record = readyRecord(window_);
  if (record == nullptr || record->TextMemoryStart < 0) return {};
  PixelDrawingCells drawings = pixelDrawingCells(window_);
  // A grid of another size belongs to a window initialised anew meanwhile.
  if (drawings.Columns != record->TextWidth || drawings.Lines != record->TextHeight) return {};
  return std::move(drawings.Cells);
}

WindowPoint WindowView::windowPointOf(double x, double y) const {
  return {x + static_cast<double>(borderWidth()),
          static_cast<double>(borderHeight() + height()) - y};
}

// ---------------------------------------------------------------------------------------------
// What a host showed

bool ShownPicture::isCurrent(const WindowView& view) const {
  const auto age = Clock::now().time_since_epoch() - Clock::duration(shownAt_.load());
  return shown_ && version_ == view.pictureVersion() && width_ == view.width() &&
         height_ == view.height() && age < PictureLifetime;
}

void ShownPicture::noteShown(const WindowView& view, std::uint64_t version) {
  version_ = version;
  width_ = view.width();
  height_ = view.height();
  shownAt_ = Clock::now().time_since_epoch().count();
  shown_ = true;
}

bool ShownPicture::compose(const WindowView& view, UInt8* pixels, std::size_t byteCount,
                           PixelOrder order) {
  const std::uint64_t version = view.pictureVersion();
  shown_ = false;
  if (!view.composePicture(pixels, byteCount, order)) return false;
  noteShown(view, version);
  return true;
}

void ShownPicture::forget() {
  shown_ = false;
}

// ---------------------------------------------------------------------------------------------

std::optional<UInt8> waitForFirstWindow() {
  for (;;) {
    const UInt8 window = DefaultWindow;
    if (WindowView(window).ready()) return window;
    if (!programRunning()) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

}  // namespace rvtools
