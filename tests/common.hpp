// SPDX-License-Identifier: MIT
// Test helpers: a fresh runtime with the log captured, screens as strings so that a test compares
// a whole screen at once, a folder of each test's own, PNG files read back, a full disk and shell
// commands with their standard error.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "rvtools/headless.hpp"
#include "rvtools/rvtools.hpp"

namespace rvtools::testing {

using Lines = std::vector<std::string>;
using Position = std::pair<Int, Int>;

// The headless host of the test binary, created once.
HeadlessHost& testHost();

// Installs `host`, captures the log (the refresh thread's own lines, which come at moments no
// test controls, left out) and creates fresh video memory, window records and queues.
void startFreshRuntime(Host& host);
// The lines logged since the runtime started (or since clearLog), without line ends.
Lines logLines();
// Everything logged since then, exactly as written.
std::string logText();
void clearLog();

class RuntimeTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Initialises window `window` with `columns` x `lines` cells of the bold 16 x 32 font.
  void initTextWindow(UInt8 window, Int depth, Int columns, Int lines);
};

// The window's characters, line by line, each line closed by '\n'; codes 32..126 as they are,
// every other code as '.'.
std::string screenText(UInt8 window);
// The window's colour bytes as two hexadecimal digits a cell, blank between cells, line by line.
std::string screenColors(UInt8 window);
// The bytes of the graphic memory of a window.
std::vector<UInt8> pictureBytes(UInt8 window);
Position cursorOf(UInt8 window);
// A key event of that value, as the key handler queues it.
t_Event keyEvent(Int value);

// A folder of the running test's own (ctest runs tests side by side, and two builds may run the
// same test at once), removed at its end.
class TestFolder {
 public:
  explicit TestFolder(const std::string& prefix);
  ~TestFolder();
  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  std::vector<std::string> files() const;

 private:
  std::filesystem::path folder_;
};

// The pixels of a PNG file as bytes A, R, G, B, read with libpng; empty when it cannot be read.
std::vector<UInt8> readPng(const std::string& path, Int* width = nullptr, Int* height = nullptr);
// Runs `work` with files limited to `bytes`, as a disk that fills up would.
void withFileSizeLimit(std::size_t bytes, const std::function<void()>& work);

// A shell command that ran: its status as std::system gives it, and what it wrote to standard
// error, for the failure message when the status is not the one expected.
struct CommandRun {
  int Status;
  std::string Errors;
};
// Runs `command` with /bin/sh, its standard error kept apart in a file of its own.
CommandRun runCommand(const std::string& command);

}  // namespace rvtools::testing
