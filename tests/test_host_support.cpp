// SPDX-License-Identifier: MIT
// What hosts share: the work handed to the interface thread, file names after window titles,
// and the view through which a host reads a graphic window.
#include <atomic>
#include <thread>
#include <vector>

#include "common.hpp"
#include "rvtools/host.hpp"

namespace rvtools::testing {
namespace {

TEST(InterfaceWorkTest, RunsEveryPieceOnceOnTheInterfaceThreadInTheOrderOfEachThread) {
  constexpr int Threads = 4, Pieces = 200;
  std::atomic<int> wakes{0}, finished{0};
  InterfaceWork work([&wakes] { ++wakes; });  // this thread is the interface thread
  const std::thread::id interfaceThread = std::this_thread::get_id();

  bool ranAtOnce = false;
  work.run([&ranAtOnce] { ranAtOnce = true; });
  EXPECT_TRUE(ranAtOnce);
  EXPECT_EQ(wakes, 0);

  // Only the interface thread touches `seen` and `elsewhere` until the threads are joined.
  std::vector<std::vector<int>> seen(Threads);
  int elsewhere = 0;
  std::vector<std::thread> handers;
  for (int t = 0; t < Threads; ++t) {
    handers.emplace_back([&, t] {
      EXPECT_FALSE(work.isInterfaceThread());
      for (int piece = 0; piece < Pieces; ++piece) {
        work.run([&, t, piece] {
          seen[t].push_back(piece);
          if (std::this_thread::get_id() != interfaceThread) ++elsewhere;
        });
      }
      ++finished;
    });
  }
  while (finished < Threads) {
    work.runHandedOver();
    std::this_thread::yield();
  }
  for (std::thread& hander : handers) hander.join();

  std::vector<int> inOrder(Pieces);
  for (int piece = 0; piece < Pieces; ++piece) inOrder[piece] = piece;
  for (int t = 0; t < Threads; ++t) EXPECT_EQ(seen[t], inOrder) << "thread " << t;
  EXPECT_EQ(elsewhere, 0);
  EXPECT_EQ(wakes, Threads * Pieces);
}

TEST(FileNameFromTitleTest, MakesAFileNameOfAnyTitle) {
  EXPECT_EQ(fileNameFromTitle("Tub/1", 0, ".png"), "Tub-1.png");
  EXPECT_EQ(fileNameFromTitle("  Kessvind  ", 0, ".png"), "Kessvind.png");
  EXPECT_EQ(fileNameFromTitle("a\tb\x01", 0, ".txt"), "a_b_.txt");
  for (const char* nameless : {"", "   ", ".", ".."})
    EXPECT_EQ(fileNameFromTitle(nameless, 3, ".png"), "Window 3.png") << '"' << nameless << '"';
}

using WindowViewTest = RuntimeTest;

TEST_F(WindowViewTest, ReadsAWindowAsItIsAndNothingOfOneNotInitialised) {
  const t_Font font = t_LoadFontResource("MenloBold 16x32.font");
  ASSERT_EQ(font.Width, 16);
  ASSERT_EQ(font.Height, 32);
  t_InitWindow(1, 8, false, 4 * 16, 2 * 32, 8, 4, font, true);
  const WindowView view(1);
  ASSERT_TRUE(view.ready());
  EXPECT_EQ((std::vector<Int>{view.width(), view.height(), view.bitDepth(), view.borderWidth(),
                              view.borderHeight(), view.cellWidth(), view.cellHeight()}),
            (std::vector<Int>{64, 64, 8, 8, 4, 16, 32}));

  // Every cell its own code and colour byte, so that a cell read from elsewhere shows.
  ScreenCells printed{4, 2, {}, {}};
  for (Int line = 1; line <= 2; ++line) {
    for (Int column = 1; column <= 4; ++column) {
      const auto index = static_cast<UInt8>(printed.Codes.size());
      printed.Codes.push_back(static_cast<UInt8>('A' + index));
      printed.Colours.push_back(static_cast<UInt8>(0x10 * index + 15 - index));
      t_PrintSymbol(1, printed.Codes.back(), printed.Colours.back(), column, line);
    }
  }
  ASSERT_TRUE(view.hasText());
  const ScreenCells cells = view.textCells();
  EXPECT_EQ(cells.Columns, printed.Columns);
  EXPECT_EQ(cells.Lines, printed.Lines);
  EXPECT_EQ(cells.Codes, printed.Codes);
  EXPECT_EQ(cells.Colours, printed.Colours);

  // Window coordinates count from the lower left of the content, border included.
  const WindowPoint topLeft = view.windowPointOf(0, 0);
  const WindowPoint bottomRight = view.windowPointOf(63, 63);
  EXPECT_EQ((std::vector<double>{topLeft.X, topLeft.Y, bottomRight.X, bottomRight.Y}),
            (std::vector<double>{8, 68, 71, 5}));

  for (const UInt8 absent : {UInt8{2}, PasteboardWindowNumber}) {
    const WindowView nothing(absent);
    EXPECT_FALSE(nothing.ready());
    EXPECT_FALSE(nothing.hasText());
    EXPECT_EQ((std::vector<Int>{nothing.width(), nothing.height(), nothing.bitDepth(),
                                nothing.borderWidth(), nothing.borderHeight(),
                                nothing.textCells().Columns, nothing.cellWidth()}),
              (std::vector<Int>{0, 0, 0, 0, 0, 0, 1}))
        << "window " << int{absent};
    EXPECT_TRUE(nothing.textCells().Codes.empty());
  }
}

}  // namespace
}  // namespace rvtools::testing
