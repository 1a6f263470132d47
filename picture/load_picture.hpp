// SPDX-License-Identifier: MIT
// Internal: reading a PNG stream into a picture, so that it can be driven without a file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "rvtools/display.hpp"

namespace rvtools::picture {

// The picture in the first `size` bytes of `stream`, exactly as t_LoadPicture reads a file, log
// lines naming `name` included; nothing when they hold no PNG of at most LargestPictureSide a
// side.
std::optional<t_Image> readPicture(std::FILE* stream, std::uint64_t size, const std::string& name);

}  // namespace rvtools::picture
