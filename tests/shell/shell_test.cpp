// Shell test helpers: one delegate and host for the binary, a fresh runtime for each test.
#include "shell_test.hpp"

#include <QTest>
#include <mutex>
#include <sstream>

#include "runtime/log.hpp"
#include "shell/qt_host.hpp"

namespace rvtools::testing {
namespace {

std::mutex logMutex;
std::string capturedLog;

shell::QtHost& shellHost() {
  static auto* host = new shell::QtHost(shellDelegate());
  return *host;
}

}  // namespace

shell::AppDelegate& shellDelegate() {
  static auto* delegate = new shell::AppDelegate([] {});
  return *delegate;
}

void ShellTest::SetUp() {
  setHost(shellHost());
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
  MemoryInitialized = false;
  EXPECT_TRUE(QTest::qWaitFor([] { return !AutoUpdateRunning; }, 2000));
  setLogSink({});
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

shell::GraphicWindow& ShellTest::graphicWindow(UInt8 window) {
  return static_cast<shell::GraphicWindow&>(*shellDelegate().window(window));
}

}  // namespace rvtools::testing
