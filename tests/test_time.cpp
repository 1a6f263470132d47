// SPDX-License-Identifier: MIT
// Time for programs that move things: the program's clock, waits, and waiting for the refresh's
// next frame of a window. Times are checked only from below, since a busy machine may be late.
#include <atomic>
#include <limits>

#include "common.hpp"

namespace rvtools::testing {
namespace {

TEST(TimeTest, TheTimerGoesForwardAndWaitsLastAtLeastTheirTime) {
  const Int start = t_Timer();
  EXPECT_GE(start, 0);
  t_Wait(0);
  t_Wait(-5);
  t_Wait(std::numeric_limits<Int>::min());
  t_Wait(30);
  const Int afterWait = t_Timer();
  EXPECT_GE(afterWait - start, 30);
  for (int i = 0; i < 1000; ++i) EXPECT_GE(t_Timer(), afterWait);
}

class FrameTest : public RuntimeTest {
 protected:
  void TearDown() override {
    setFrameListener({});
    RuntimeTest::TearDown();
  }
};

TEST_F(FrameTest, WaitFrameReturnsAfterTheNextFrameOrAtOnceWithoutRefresh) {
  initTextWindow(0, 8, 8, 2);  // without AutoUpdate
  std::atomic<int> frames{0};
  setFrameListener([&](UInt8 window) {
    if (window == 0) ++frames;
  });
  t_WaitFrame(0);
  EXPECT_EQ(frames, 0);

  // Twenty frames a second: five waits take four intervals at least.
  Windows[0].RefreshRate = 20;
  Windows[0].AutoUpdate = true;
  t_WaitFrame(0);
  const int framesBefore = frames;
  const Int start = t_Timer();
  for (int i = 0; i < 5; ++i) t_WaitFrame(0);
  EXPECT_GE(t_Timer() - start, 4 * 50);
  EXPECT_GE(frames - framesBefore, 5);

  t_WaitFrame(8);
  t_WaitFrame(1);
  EXPECT_EQ(logLines(), (Lines{"t_WaitFrame: Window is not a graphic window.",
                               "t_WaitFrame: Window #1 not initialized."}));
}

}  // namespace
}  // namespace rvtools::testing
