// Start-up: the character tables, the memory and records that t_InitMemory creates, program
// threads and their numbers, and the window frame operations' refusals and limits.
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
  EXPECT_EQ(logLines(), (std::vector<std::string>{"initrvtools: Start.", "initrvtools: End."}));
}

TEST_F(StartupTest, MemoryIsCreatedOnceWithDefaultRecords) {
  EXPECT_EQ(VideoMemory, std::vector<UInt8>(0x100000F, 255));
  EXPECT_EQ(HighMemory, 0xFFFFFF);
  for (const t_Window& record : Windows) {
    EXPECT_EQ(record.MemoryStart, -1);
    EXPECT_EQ(record.TextMemoryEnd, -1);
    EXPECT_EQ(record.RefreshRate, 30);
    EXPECT_TRUE(record.VerticalBlank);
  }
  t_InitMemory();
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
  EXPECT_EQ(logLines(), (std::vector<std::string>{"t_WindowFront: Window does not exist.",
                                                  "t_WindowCenter: Window does not exist.",
                                                  "t_WindowVisible: Window does not exist.",
                                                  "t_WindowInfo: Window does not exist."}));

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
  const std::vector<std::string> expected = {"applicationWillFinishLaunching: Called.",
                                             "applicationDidFinishLaunching: Start.",
                                             "initrvtools: Start.",
                                             "initrvtools: End.",
                                             "Program: Start.",
                                             "applicationDidFinishLaunching: End.",
                                             "applicationWillTerminate: Called."};
  EXPECT_EQ(logLines(), expected);
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

}  // namespace
}  // namespace rvtools::testing
