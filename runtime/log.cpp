// SPDX-License-Identifier: MIT
// The runtime's log: standard output, or a sink that a host or a test installs, and a mirror
// that sees every write.
#include "runtime/log.hpp"

#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

#include <cstdio>
#include <mutex>

namespace rvtools {
namespace {

std::mutex& logMutex() {
  static auto* mutex = new std::mutex;
  return *mutex;
}

std::function<void(std::string_view)>& logSink() {
  static auto* sink = new std::function<void(std::string_view)>;
  return *sink;
}

std::function<void(std::string_view)>& logMirror() {
  static auto* mirror = new std::function<void(std::string_view)>;
  return *mirror;
}

}  // namespace

void logWrite(std::string_view text) {
  std::lock_guard lock(logMutex());
  if (logMirror()) logMirror()(text);
  if (logSink()) {
    logSink()(text);
    return;
  }
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void t_Log(const std::string& line) {
  std::string withEnd = line;
  withEnd += '\n';
  logWrite(withEnd);
}

void setLogSink(std::function<void(std::string_view)> sink) {
  std::lock_guard lock(logMutex());
  logSink() = std::move(sink);
}

void setLogMirror(std::function<void(std::string_view)> mirror) {
  std::lock_guard lock(logMutex());
  logMirror() = std::move(mirror);
}

}  // namespace rvtools
