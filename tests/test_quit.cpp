// Quitting the program: the closing text, the log line, and the end of the program thread by
// unwinding, so that the program's destructors run and nothing after the call does.
#include <atomic>
#include <chrono>
#include <thread>

#include "common.hpp"
#include "runtime/threads.hpp"

namespace rvtools::testing {
namespace {

// Sets its flag when it goes out of scope.
struct Sentinel {
  std::atomic<bool>& flag;
  ~Sentinel() { flag = true; }
};

class QuitTest : public RuntimeTest {
 protected:
  // Runs t_QuitProgram(window) on a program thread, waits until that thread has ended and checks
  // that it unwound: its local objects were destroyed and the code after the call never ran.
  void quitOnProgramThread(UInt8 window) {
    startprocess(
        [this, window] {
          Sentinel local{localDestroyed_};
          started_ = true;
          t_QuitProgram(window);
          ranOn_ = true;
        },
        1 << 20);
    for (int step = 0; step < 400; ++step) {
      if (started_ && !ProgramStartPending && runningProgramThreads() == 0) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_EQ(runningProgramThreads(), 0);
    EXPECT_TRUE(started_ && localDestroyed_);
    EXPECT_FALSE(ranOn_);
  }

  std::atomic<bool> started_{false}, localDestroyed_{false}, ranOn_{false};
};

TEST_F(QuitTest, LeavesTheClosingTextOnTheLastLine) {
  initTextWindow(0, 24, 16, 3);
  t_CursorHome(0);
  t_ClearEndOfWindow(0);
  t_Print(0, "\x0F\x14hello");  // inverse and mode 1, which the closing text must not use
  t_WindowVisible(0, true);
  clearLog();
  const int redraws = testHost().windowState(0).Redraws;
  quitOnProgramThread(0);
  EXPECT_EQ(logText(), "t_QuitProgram: Quitting current thread with message in window #0.\n");
  EXPECT_EQ(screenText(0).substr(17), std::string(16, ' ') + "\n(Programm Ende) \n");
  EXPECT_EQ(screenColors(0).substr(2 * 48), "10 10 10 10 10 10 10 10 10 10 10 10 10 10 10 C0\n");
  EXPECT_GT(testHost().windowState(0).Redraws, redraws);
}

TEST_F(QuitTest, WithoutAWindowOnlyLogsAndEnds) {
  initTextWindow(0, 24, 16, 3);
  const std::string screen = screenText(0);
  quitOnProgramThread(20);
  EXPECT_EQ(logText(), "t_QuitProgram: Quitting current thread.\n");
  EXPECT_EQ(screenText(0), screen);
}

}  // namespace
}  // namespace rvtools::testing
