// SPDX-License-Identifier: MIT
// The shell tests' main: an application object on the offscreen platform, the delegate with
// all windows and the Qt host, created once; then the tests.
#include <gtest/gtest.h>

#include <QApplication>

#include "shell_test.hpp"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  // Listing the tests happens without the test environment, and needs no display either.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  application.setQuitOnLastWindowClosed(false);
  rvtools::testing::shellDelegate();
  return RUN_ALL_TESTS();
}
