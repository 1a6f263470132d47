// Shell test helpers: one delegate and host for the binary, a fresh runtime for each test.
#include "shell_test.hpp"

#include <QMenu>
#include <QTest>
#include <mutex>
#include <sstream>

#include "runtime/log.hpp"
#include "shell/dialogs.hpp"
#include "shell/qt_host.hpp"

namespace rvtools::testing {
namespace {

std::mutex logMutex;
std::string capturedLog;

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
  setHost(shellHost());
  shell::setDialogRunner([](QDialog&) {
    ADD_FAILURE() << "a dialog the test did not expect";
    return int{QDialog::Rejected};
  });
  // The refresh thread's own start and end lines come at moments no test controls.
  setLogSink([](std::string_view text) {
    if (text.starts_with("t_WindowAutoUpdateProcess: ")) return;
    std::lock_guard lock(logMutex);
    capturedLog += text;
  });
  if (!ToolsInitialized) initrvtools();
  MemoryInitStarted = false;
  MemoryInitialized = false;
  EventQueue.clear();
  MouseEventQueue.clear();
  MenuEventQueue.clear();
  t_InitMemory();
  std::lock_guard lock(logMutex);
  capturedLog.clear();
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

std::vector<std::string> ShellTest::logLines() const {
  std::lock_guard lock(logMutex);
  std::vector<std::string> lines;
  std::istringstream text(capturedLog);
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

void ShellTest::initGraphicWindow(UInt8 window, Int width, Int height, Int border,
                                  bool autoUpdate) {
  t_InitWindow(window, 8, autoUpdate, width, height, border, border, t_Font{}, true);
  ASSERT_TRUE(Windows[window].Initialized);
  std::lock_guard lock(logMutex);
  capturedLog.clear();
}

void ShellTest::initTextWindow(UInt8 window, Int columns, Int lines) {
  t_InitWindow(window, 24, columns, lines, 8, "MenloBold 16x32.font");
  ASSERT_TRUE(Windows[window].Initialized);
  ASSERT_GE(Windows[window].TextMemoryStart, 0);
  t_CursorHome(window);
  t_ClearEndOfWindow(window);
  std::lock_guard lock(logMutex);
  capturedLog.clear();
}

void ShellTest::bringToFront(UInt8 window) {
  t_WindowFront(window);
  ASSERT_TRUE(QTest::qWaitForWindowActive(shellDelegate().window(window)));
}

shell::GraphicWindow& ShellTest::graphicWindow(UInt8 window) {
  return static_cast<shell::GraphicWindow&>(*shellDelegate().window(window));
}

}  // namespace rvtools::testing
