// SPDX-License-Identifier: MIT
// Start-up and the end: the character tables, program threads, frame operations' limits, the
// launch sequence, picture versions, and t_QuitProgram unwinding the program thread.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>
#include <thread>

#include "common.hpp"
#include "runtime/threads.hpp"

namespace rvtools::testing {
namespace {

using StartupTest = RuntimeTest;

TEST_F(StartupTest, CharacterTablesKeepTheirQuirk) {
  initrvtools();
  // The lower-case pass lands in UpperCaseTable; LowerCaseTable stays zero.
  EXPECT_EQ((std::vector<int>{UpperCaseTable['A'], UpperCaseTable['a'], UpperCaseTable[0xC4],
                              UpperCaseTable[0xD7]}),
            (std::vector<int>{'a', 'a', 0xE4, 0xD7}));
  EXPECT_EQ(LowerCaseTable, std::vector<UInt8>(256, 0));
  EXPECT_EQ(
      (std::vector<Int>{DigitValues['7'], DigitValues['f'], DigitValues['F'], DigitValues['g']}),
      (std::vector<Int>{7, 15, 15, -1}));
  EXPECT_EQ(logLines(), (Lines{"initrvtools: Start.", "initrvtools: End."}));
  clearLog();
  t_InitMemory();  // the memory is created once
  EXPECT_TRUE(logLines().empty());
}

TEST_F(StartupTest, ProgramsRunOnNumberedThreadsOneStartAtATime) {
  std::atomic<int> finished{0};
  std::atomic<Int> firstNumber{0};
  std::atomic<bool> release{false};
  startprocess(
      [&] {
        firstNumber = CurrentThreadNumber();
        while (!release) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ++finished;
      },
      1 << 20);
  startprocess([&] { ++finished; }, 1 << 20);  // waits until the first has taken its entry
  EXPECT_FALSE(ProgramStartPending && firstNumber == 0 && finished == 0);
  release = true;
  for (int i = 0; i < 500 && (finished < 2 || runningProgramThreads() > 0); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_EQ(finished, 2);
  EXPECT_GT(firstNumber, 1);
  EXPECT_GT(CurrentThreadNumber(), 0);
}

TEST_F(StartupTest, FrameOperationsRefuseNumbersWithoutAWindow) {
  t_WindowFront(13);
  t_WindowCenter(255);
  t_WindowVisible(13, true);
  EXPECT_EQ(t_WindowInfo(200).Frame.Width, 0);
  t_WindowFront(9);
  EXPECT_TRUE(testHost().windowState(9).Frame.Visible);
  t_WindowFront(2);
  EXPECT_TRUE(Windows[2].Visible);
  EXPECT_EQ(
      logLines(),
      (Lines{"t_WindowFront: Window does not exist.", "t_WindowCenter: Window does not exist.",
             "t_WindowVisible: Window does not exist.", "t_WindowInfo: Window does not exist."}));
  // Frames beyond any screen reach the host within 32-bit coordinates.
  t_WindowSize(9, -1, -1, std::numeric_limits<Int>::max(), std::numeric_limits<Int>::min());
  t_WindowCenter(9);
  const WindowFrame frame = t_WindowInfo(9).Frame;
  EXPECT_EQ(std::make_pair(frame.Width, frame.Height),
            std::make_pair(Int{std::numeric_limits<std::int32_t>::max()},
                           Int{std::numeric_limits<std::int32_t>::min()}));
}

// The launch sequence is the same on every host; a mirror sees the log that a sink takes.
TEST_F(StartupTest, LaunchSequenceLogsItsStepsAndStartsTheProgram) {
  std::string mirrored;
  setLogMirror([&mirrored](std::string_view text) { mirrored += text; });
  std::atomic<bool> ran{false};
  TitleBarDelta = 0;
  runLaunchSequence([&ran] { ran = true; }, 22);
  runTerminationSequence();
  setLogMirror({});
  for (int i = 0; i < 500 && (!ran || runningProgramThreads() > 0); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_TRUE(ran);
  EXPECT_EQ(TitleBarDelta, 22);
  EXPECT_TRUE(LaunchFinished);
  EXPECT_EQ(
      logLines(),
      (Lines{"applicationWillFinishLaunching: Called.", "applicationDidFinishLaunching: Start.",
             "initrvtools: Start.", "initrvtools: End.", "Program: Start.",
             "applicationDidFinishLaunching: End.", "applicationWillTerminate: Called."}));
  EXPECT_EQ(mirrored, logText());
}

// Writing operations advance a window's picture version; reading ones leave it.
TEST_F(StartupTest, PictureVersionsFollowWhatChangesAPicture) {
  initTextWindow(1, 8, 4, 2);
  const std::uint64_t initialised = pictureVersion(1);
  t_Scrn(1, 0, 0);
  t_GetScreen(1, "");
  EXPECT_EQ(pictureVersion(1), initialised);
  t_Print(1, "A");
  const std::uint64_t printed = pictureVersion(1);
  EXPECT_GT(printed, initialised);
  t_WindowVisible(1, true);
  EXPECT_GT(pictureVersion(1), printed);
  EXPECT_EQ(pictureVersion(8), 0u);
}

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
