// Whole-file reading with POSIX calls. Only regular files are read: a directory, a device or a
// named pipe yields no bytes, so that a wrong name can neither fail oddly nor block the caller.
// Also the bundle folder around the executable, where the resources lie.
#include "runtime/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

#include "rvtools/platform.hpp"

namespace rvtools {
namespace {

constexpr std::size_t ReadChunkSize = 1 << 16;

// Reads until the end of the file; false on a read error.
bool readToEnd(int descriptor, std::vector<UInt8>& bytes) {
  for (;;) {
    const std::size_t used = bytes.size();
    bytes.resize(used + ReadChunkSize);
    const ssize_t count = read(descriptor, bytes.data() + used, ReadChunkSize);
    bytes.resize(used + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
  }
}

}  // namespace

std::vector<UInt8> readWholeFile(const std::string& path) {
  // Non-blocking, so that opening a named pipe without a writer returns at once.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return {};
  std::vector<UInt8> bytes;
  struct stat status {};
  bool complete = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  if (complete) {
    // The size is a hint only: the file may change while it is read.
    bytes.reserve(static_cast<std::size_t>(status.st_size) + ReadChunkSize);
    complete = readToEnd(descriptor, bytes);
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
