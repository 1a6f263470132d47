// SPDX-License-Identifier: MIT
// Internal: reading whole files into memory, for font resources and other files the runtime
// opens by path. The bundle folder that resources are looked up in, bundleAroundExecutable, is
// public (rvtools/platform.hpp), since every host names its windows and sounds after it.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// The bytes of the regular file at `path`; empty when it is missing, unreadable, empty, no
// regular file, or longer than `limit` bytes. Logs nothing.
std::vector<UInt8> readWholeFile(const std::string& path,
                                 std::size_t limit = std::numeric_limits<std::size_t>::max());

}  // namespace rvtools
