// SPDX-License-Identifier: MIT
// The picture versions of the eight graphic windows: counters that the program thread advances
// and the views read, with relaxed ordering, since a view that reads a version a moment late
// composes once more, and nothing else depends on it.
#include "runtime/picture_versions.hpp"

#include <array>
#include <atomic>
#include <cstdint>

#include "rvtools/platform.hpp"

namespace rvtools {
namespace {

std::array<std::atomic<std::uint64_t>, GraphicWindowCount>& versions() {
  static auto* counters = new std::array<std::atomic<std::uint64_t>, GraphicWindowCount>{};
  return *counters;
}

}  // namespace

void markPictureChanged(UInt8 window) {
  if (window < GraphicWindowCount) versions()[window].fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t pictureVersion(UInt8 window) {
  return window < GraphicWindowCount ? versions()[window].load(std::memory_order_relaxed) : 0;
}

}  // namespace rvtools
