// SPDX-License-Identifier: MIT
// Shell test helpers: one delegate and host for the binary, a fresh runtime for each test.
#include "shell_test.hpp"

#include <QMenu>
#include <QTest>

#include "shell/dialogs.hpp"
#include "shell/qt_host.hpp"

namespace rvtools::testing {
namespace {

shell::QtHost& shellHost() {
  static auto* host = new shell::QtHost(shellDelegate());
  return *host;
}

// The offscreen platform keeps a hidden window focused, so that the window would not become
// active again when the next test shows it; a window of the tests' own takes the focus instead.
void takeFocusFromTheWindows() {
  static auto* bystander = new QWidget;
  bystander->show();
  bystander->activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(bystander));
  bystander->hide();
}

}  // namespace

shell::AppDelegate& shellDelegate() {
  static auto* delegate = new shell::AppDelegate([] {});
  return *delegate;
}

void ShellTest::SetUp() {
  shell::setDialogRunner([](QDialog&) {
    ADD_FAILURE() << "a dialog the test did not expect";
    return int{QDialog::Rejected};
  });
  startFreshRuntime(shellHost());
}

void ShellTest::TearDown() {
  for (UInt8 n = 0; n <= MainWindowNumber; ++n) shellDelegate().window(n)->hide();
  takeFocusFromTheWindows();
  MemoryInitialized = false;
  EXPECT_TRUE(QTest::qWaitFor([] { return !AutoUpdateRunning; }, 2000));
  setLogSink({});
  shell::setDialogRunner({});
}

QAction* ShellTest::menuItem(const QString& menu, const QString& title) {
  const QMenu* holder = shellDelegate().menuTitled(menu);
  for (QAction* item : holder != nullptr ? holder->actions() : QList<QAction*>()) {
    if (item->text() == title) return item;
  }
  return nullptr;
}

void ShellTest::choose(const QString& menu, const QString& title) {
  QAction* item = menuItem(menu, title);
  ASSERT_NE(item, nullptr) << title.toStdString();
  emit shellDelegate().menuTitled(menu)->aboutToShow();
  item->trigger();
}

void ShellTest::initGraphicWindow(UInt8 window, Int width, Int height, Int border,
                                  bool autoUpdate) {
  t_InitWindow(window, 8, autoUpdate, width, height, border, border, t_Font{}, true);
  ASSERT_TRUE(Windows[window].Initialized);
  clearLog();
}

void ShellTest::initTextWindow(UInt8 window, Int columns, Int lines) {
  t_InitWindow(window, 24, columns, lines, 8, "MenloBold 16x32.font");
  ASSERT_TRUE(Windows[window].Initialized);
  ASSERT_GE(Windows[window].TextMemoryStart, 0);
  t_CursorHome(window);
  t_ClearEndOfWindow(window);
  clearLog();
}

void ShellTest::bringToFront(UInt8 window) {
  t_WindowFront(window);
  ASSERT_TRUE(QTest::qWaitForWindowActive(shellDelegate().window(window)));
}

shell::GraphicWindow& ShellTest::graphicWindow(UInt8 window) {
  return static_cast<shell::GraphicWindow&>(*shellDelegate().window(window));
}

}  // namespace rvtools::testing
