// SPDX-License-Identifier: MIT
// Whole-file reading with POSIX calls. Only regular files are read: a directory, a device or a
// named pipe yields no bytes, so that a wrong name can neither fail oddly nor block the caller.
// Also the bundle folder around the executable, where the resources lie.
#include "runtime/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

#include "rvtools/platform.hpp"

namespace rvtools {
namespace {

constexpr std::size_t ReadChunkSize = 1 << 16;
// The most that is set aside before reading; a file that is larger (or claims to be, as a
// sparse file may) grows the buffer as it is read.
constexpr std::size_t LargestReservation = std::size_t{64} << 20;

// Reads until the end of the file; false on a read error or past `limit` bytes.
bool readToEnd(int descriptor, std::vector<UInt8>& bytes, std::size_t limit) {
  for (;;) {
    const std::size_t used = bytes.size();
    if (used > limit) return false;
    bytes.resize(used + ReadChunkSize);
    const ssize_t count = read(descriptor, bytes.data() + used, ReadChunkSize);
    bytes.resize(used + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
  }
}

}  // namespace

std::vector<UInt8> readWholeFile(const std::string& path, std::size_t limit) {
  // Non-blocking, so that opening a named pipe without a writer returns at once.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return {};
  std::vector<UInt8> bytes;
  struct stat status {};
  bool complete = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  if (complete) {
    // The size is a hint only: the file may change while it is read.
    const auto size = static_cast<std::size_t>(status.st_size);
    bytes.reserve(std::min({size, limit, LargestReservation}) + ReadChunkSize);
    // A file larger than the memory the process can have is no file it can read.
    try {
      complete = readToEnd(descriptor, bytes, limit);
    } catch (const std::bad_alloc&) {
      complete = false;
    }
  }
  close(descriptor);
  if (!complete) return {};
  return bytes;
}

std::string bundleAroundExecutable() {
  char buffer[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (length <= 0) return ".";
  std::string path(buffer, static_cast<size_t>(length));
  path.erase(path.rfind('/'));
  const std::string contents = "/Contents/MacOS";
  if (path.size() > contents.size() && path.ends_with(contents)) {
    path.erase(path.size() - contents.size());
  }
  return path;
}

}  // namespace rvtools
