// Quitting the program: the closing text, the log line, and the end of the program thread by
// unwinding, so that the program's destructors run and nothing after the call does.
#include <atomic>
#include <chrono>
#include <thread>

#include "common.hpp"
#include "runtime/threads.hpp"

namespace rvtools::testing {
namespace {

using namespace std::chrono_literals;

struct Outcome {
  std::atomic<bool> started{false};
  std::atomic<bool> localDestroyed{false};
  std::atomic<bool> ranOn{false};
};

// Sets its flag when it goes out of scope.
struct Sentinel {
  std::atomic<bool>& flag;
  ~Sentinel() { flag = true; }
};

class QuitTest : public RuntimeTest {
 protected:
  // Runs t_QuitProgram(window) on a program thread and waits until that thread has ended.
  void quitOnProgramThread(UInt8 window) {
    startprocess(
        [this, window] {
          Sentinel local{outcome_.localDestroyed};
          outcome_.started = true;
          t_QuitProgram(window);
          outcome_.ranOn = true;
        },
        1 << 20);
    for (int step = 0; step < 400; ++step) {
      if (outcome_.started && !ProgramStartPending && runningProgramThreads() == 0) break;
      std::this_thread::sleep_for(5ms);
    }
    ASSERT_TRUE(outcome_.started);
    ASSERT_EQ(runningProgramThreads(), 0);
  }

  Outcome outcome_;
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
  EXPECT_TRUE(outcome_.localDestroyed);
  EXPECT_FALSE(outcome_.ranOn);
  EXPECT_EQ(logText(), "t_QuitProgram: Quitting current thread with message in window #0.\n");
  EXPECT_EQ(screenText(0).substr(17), std::string(16, ' ') + "\n(Programm Ende) \n");
  EXPECT_EQ(screenColors(0).substr(2 * 48), "10 10 10 10 10 10 10 10 10 10 10 10 10 10 10 C0\n");
  EXPECT_GT(testHost().windowState(0).Redraws, redraws);
}

TEST_F(QuitTest, WithoutAWindowOnlyLogsAndEnds) {
  initTextWindow(0, 24, 16, 3);
  const std::string screen = screenText(0);
  quitOnProgramThread(20);
  EXPECT_TRUE(outcome_.localDestroyed);
  EXPECT_FALSE(outcome_.ranOn);
  EXPECT_EQ(logText(), "t_QuitProgram: Quitting current thread.\n");
  EXPECT_EQ(screenText(0), screen);
}

}  // namespace
}  // namespace rvtools::testing
