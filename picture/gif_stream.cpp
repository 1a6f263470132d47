// SPDX-License-Identifier: MIT
// Animated GIF files through giflib's streaming interface: a GIF89a screen without a global
// colour table and per frame a graphic control extension (delay, transparent index, frames left
// in place) and an image with a colour table of its own. A recording plays once and then keeps
// showing its last picture, as the window did when the recording ended; it has no loop
// extension. giflib's output function appends to the PendingFile; a failed write ends giflib's
// work with an error that finish() reports.
#include "picture/gif_stream.hpp"

#include <gif_lib.h>

#include <algorithm>
#include <vector>

namespace rvtools::picture {
namespace {

// The longest delay a graphic control extension holds: 655.35 seconds.
constexpr int LongestDelay = 0xFFFF;

int appendToFile(GifFileType* gif, const GifByteType* bytes, int length) {
  auto& file = *static_cast<PendingFile*>(gif->UserData);
  file.write({bytes, static_cast<std::size_t>(length)});
  return file.failure() ? 0 : length;
}

// GIF colour tables hold a power of two colours, at least two.
int tableSize(std::size_t colours) {
  int size = 2;
  while (static_cast<std::size_t>(size) < colours) size *= 2;
  return size;
}

}  // namespace

GifStream::GifStream(PendingFile& file, int width, int height) : file_(file) {
  gif_ = EGifOpen(&file_, appendToFile, &error_);
  if (gif_ == nullptr) return;
  EGifSetGifVersion(gif_, true);
  check(EGifPutScreenDesc(gif_, width, height, 8, 0, nullptr));
}

GifStream::~GifStream() {
  if (gif_ != nullptr) EGifCloseFile(gif_, nullptr);
}

void GifStream::check(int result) {
  if (result != GIF_ERROR || error_ != 0) return;
  error_ = gif_->Error != 0 ? gif_->Error : E_GIF_ERR_WRITE_FAILED;
}

void GifStream::putControl(int delay, int transparentIndex) {
  GraphicsControlBlock control{};
  control.DisposalMode = DISPOSE_DO_NOT;
  control.DelayTime = delay;
  control.TransparentColor = transparentIndex;
  GifByteType extension[4];
  EGifGCBToExtension(&control, extension);
  check(EGifPutExtension(gif_, GRAPHICS_EXT_FUNC_CODE, sizeof extension, extension));
}

void GifStream::putImage(const IndexedFrame& frame) {
  std::vector<GifColorType> colours(tableSize(frame.Colours.size()));
  std::transform(frame.Colours.begin(), frame.Colours.end(), colours.begin(),
                 [](const std::array<std::uint8_t, 3>& c) {
                   return GifColorType{c[0], c[1], c[2]};
                 });
  ColorMapObject* table = GifMakeMapObject(static_cast<int>(colours.size()), colours.data());
  const Area& place = frame.Place;
  check(EGifPutImageDesc(gif_, place.Left, place.Top, place.Width, place.Height, false, table));
  GifFreeMapObject(table);
  if (error_ != 0) return;
  auto* indices = const_cast<GifPixelType*>(frame.Indices.data());
  check(EGifPutLine(gif_, indices, static_cast<int>(frame.Indices.size())));
}

void GifStream::addFrame(const IndexedFrame& frame, int delay) {
  if (gif_ == nullptr || error_ != 0) return;
  putControl(std::min(delay, LongestDelay),
             frame.Transparent ? *frame.Transparent : NO_TRANSPARENT_COLOR);
  putImage(frame);
  if (delay > LongestDelay) addPause(delay - LongestDelay);
}

// A pause is a frame of one transparent pixel.
void GifStream::addPause(int delay) {
  IndexedFrame nothing;
  nothing.Place = {0, 0, 1, 1};
  nothing.Colours = {{0, 0, 0}};
  nothing.Indices = {0};
  nothing.Transparent = 0;
  for (; delay > 0 && gif_ != nullptr && error_ == 0; delay -= LongestDelay) {
    putControl(std::min(delay, LongestDelay), 0);
    putImage(nothing);
  }
}

// When EGifOpen failed, it has set the error code.
std::optional<std::string> GifStream::finish() {
  if (gif_ != nullptr) {
    int closeError = 0;
    if (EGifCloseFile(gif_, &closeError) == GIF_ERROR && error_ == 0) error_ = closeError;
    gif_ = nullptr;
  }
  if (file_.failure()) return file_.failure();
  if (error_ != 0) return GifErrorString(error_);
  if (!file_.commit()) return file_.failure();
  return std::nullopt;
}

}  // namespace rvtools::picture
