// SPDX-License-Identifier: MIT
// Shell test helpers: the delegate and host shared by all tests and a fresh runtime on the Qt host
// for each; dialogs that a test does not answer itself are cancelled.
#pragma once

#include <QAction>
#include <QString>

#include "common.hpp"
#include "shell/app_delegate.hpp"

namespace rvtools::testing {

// The delegate of the test binary with its windows, created once with its Qt host.
shell::AppDelegate& shellDelegate();

class ShellTest : public ::testing::Test {
 protected:
  void SetUp() override;
  // Hides every window and stops the refresh before the next test makes fresh records.
  void TearDown() override;
  // The item of that title in the menu of that title, or null.
  static QAction* menuItem(const QString& menu, const QString& title);
  // Opens the menu (which brings its items' enabled states up to date) and chooses the item.
  static void choose(const QString& menu, const QString& title);
  // Graphic window `window` of width x height grey pixels with a border around it.
  void initGraphicWindow(UInt8 window, Int width, Int height, Int border, bool autoUpdate);
  // Graphic window `window` of columns x lines blank characters of the bundle's bold font.
  void initTextWindow(UInt8 window, Int columns, Int lines);
  // Brings `window` to the front and waits until it is the active window.
  void bringToFront(UInt8 window);
  shell::GraphicWindow& graphicWindow(UInt8 window);
};

}  // namespace rvtools::testing
