// SPDX-License-Identifier: MIT
// Whole files written under a temporary name and renamed when complete, with POSIX calls, so
// that a full disk, a folder without write permission or a missing folder leaves nothing
// behind under the final name.
#include "picture/file_output.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace rvtools::picture {

namespace {

// Tells the temporary files of one process apart.
std::atomic<unsigned> temporaryFileCount{0};

}  // namespace

// The temporary file is created with the permissions any new file gets (0666 less the umask),
// so that the finished file has them too.
PendingFile::PendingFile(std::string path) : path_(std::move(path)) {
  for (int attempt = 0; attempt < 100 && descriptor_ < 0; ++attempt) {
    temporaryPath_ = path_ + ".partial-" + std::to_string(getpid()) + "-" +
                     std::to_string(temporaryFileCount.fetch_add(1));
    descriptor_ = open(temporaryPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST) break;
  }
  if (descriptor_ < 0) fail("cannot create it");
}

PendingFile::~PendingFile() {
  if (descriptor_ >= 0) {
    close(descriptor_);
    unlink(temporaryPath_.c_str());
  }
}

void PendingFile::fail(const char* step) {
  if (!failure_) failure_ = std::string(step) + ": " + std::strerror(errno);
}

void PendingFile::write(std::span<const std::uint8_t> bytes) {
  while (!failure_ && !bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      if (written == 0) errno = ENOSPC;
      fail("cannot write it");
      return;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
}

bool PendingFile::commit() {
  if (failure_) return false;
  if (fsync(descriptor_) != 0) {
    fail("cannot write it");
    return false;
  }
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (close(descriptor) != 0) {
    fail("cannot write it");
    unlink(temporaryPath_.c_str());
    return false;
  }
  if (rename(temporaryPath_.c_str(), path_.c_str()) != 0) {
    fail("cannot give it its name");
    unlink(temporaryPath_.c_str());
    return false;
  }
  return true;
}

std::optional<std::string> writeFileAtomically(const std::string& path,
                                               std::span<const std::uint8_t> bytes) {
  PendingFile file(path);
  file.write(bytes);
  if (!file.commit()) return file.failure();
  return std::nullopt;
}

}  // namespace rvtools::picture
