// Shell test helpers: the delegate and host shared by all tests, and a fixture that gives each
// test a fresh runtime on the Qt host with the log captured.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rvtools/rvtools.hpp"
#include "shell/app_delegate.hpp"

namespace rvtools::testing {

// The delegate of the test binary with its windows, created once with its Qt host.
shell::AppDelegate& shellDelegate();

class ShellTest : public ::testing::Test {
 protected:
  void SetUp() override;
  // Hides every window and stops the refresh before the next test makes fresh records.
  void TearDown() override;

  std::vector<std::string> logLines() const;
  // Graphic window `window` of width x height grey pixels with a border around it.
  void initGraphicWindow(UInt8 window, Int width, Int height, Int border, bool autoUpdate);
  shell::GraphicWindow& graphicWindow(UInt8 window);
};

}  // namespace rvtools::testing
