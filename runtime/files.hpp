// Internal: reading whole files into memory, for font resources and other files the runtime
// or the shell opens by path, and the bundle folder that resources are looked up in.
#pragma once

#include <string>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// The bytes of the regular file at `path`; empty when it is missing, unreadable, empty or no
// regular file. Logs nothing.
std::vector<UInt8> readWholeFile(const std::string& path);

// The <Name>.app folder around the running executable (<Name>.app/Contents/MacOS/program), or
// the executable's own folder when it lies in no bundle.
std::string bundleAroundExecutable();

}  // namespace rvtools
