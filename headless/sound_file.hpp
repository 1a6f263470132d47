// SPDX-License-Identifier: MIT
// Internal: the headless host's audio output, a WAV file. A thread of its own pulls the sound
// in the program's time, every 2 ms what the clock says is due since the output started, and
// writes it as 16-bit mono through libsndfile.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace rvtools::headless {

class SoundFile {
 public:
  // Opens the file for writing; a line on standard error when it cannot be written.
  explicit SoundFile(const std::string& path);
  ~SoundFile();
  SoundFile(const SoundFile&) = delete;
  SoundFile& operator=(const SoundFile&) = delete;

  bool isOpen() const { return file_ != nullptr; }
  // Starts pulling; finish pulls what is due, stops and closes the file.
  void start();
  void finish();
  // How many samples that were not silent have been written.
  std::int64_t audibleSamples() const { return audibleSamples_; }

 private:
  struct Closer {
    void operator()(void* file) const;
  };
  void run();
  void writeDue(std::int64_t due);

  std::unique_ptr<void, Closer> file_;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable finishing_;
  bool finish_ = false;  // guarded by mutex_
  std::int64_t written_ = 0;
  std::atomic<std::int64_t> audibleSamples_{0};
};

}  // namespace rvtools::headless
