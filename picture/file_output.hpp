// SPDX-License-Identifier: MIT
// Internal: writing a whole file safely. The bytes go to a temporary file in the same folder,
// which is renamed to the final name only once everything is written and flushed; on any
// failure the temporary file is removed and the final name is left as it was.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace rvtools::picture {

// A file being written under a temporary name beside `path`.
class PendingFile {
 public:
  explicit PendingFile(std::string path);
  ~PendingFile();  // removes the temporary file unless it was committed
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  // Why the file could not be opened or written; nothing while all went well.
  const std::optional<std::string>& failure() const { return failure_; }
  // Appends bytes; after a failure it does nothing.
  void write(std::span<const std::uint8_t> bytes);
  // Flushes the file and gives it its final name; false (with failure() set) when that fails.
  bool commit();

 private:
  void fail(const char* step);

  std::string path_;
  std::string temporaryPath_;
  int descriptor_ = -1;
  std::optional<std::string> failure_;
};

// Writes `bytes` as the whole file at `path`; the reason when it could not.
std::optional<std::string> writeFileAtomically(const std::string& path,
                                               std::span<const std::uint8_t> bytes);

}  // namespace rvtools::picture
