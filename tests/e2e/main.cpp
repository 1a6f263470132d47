// SPDX-License-Identifier: MIT
// The end-to-end tests' main: a core application object for the child processes, then the tests.
#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
