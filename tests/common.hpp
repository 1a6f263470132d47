// Test helpers: a fixture that gives every test a fresh runtime on the headless host with the
// log captured, and renderings of a window's text memory as strings, so that a test compares a
// whole screen in one assertion.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rvtools/headless.hpp"
#include "rvtools/rvtools.hpp"

namespace rvtools::testing {

// The headless host of the test binary, created once.
HeadlessHost& testHost();

class RuntimeTest : public ::testing::Test {
 protected:
  // Installs the host, captures the log and creates fresh video memory and window records.
  void SetUp() override;
  void TearDown() override;

  // The lines logged since the test started (or since clearLog), without line ends.
  std::vector<std::string> logLines() const;
  // Everything logged since the test started, exactly as written.
  std::string logText() const;
  void clearLog();

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

}  // namespace rvtools::testing
