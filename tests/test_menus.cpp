// SPDX-License-Identifier: MIT
// Menus and the auxiliary windows on the headless host: the start-up scan, trimming menus,
// choices that run built-in actions or reach the program, the text windows and file panels.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

using namespace std::chrono_literals;

t_MenuItem choice(Int tag, const std::string& menu = "Window", const std::string& item = "") {
  t_MenuItem chosen;
  chosen.MenuTitle = menu;
  chosen.ItemTitle = item;
  chosen.Tag = tag;
  return chosen;
}

// Waits up to a second for a counter that a worker raises.
bool reaches(const std::atomic<int>& counter, int value) {
  for (int step = 0; step < 100 && counter.load() < value; ++step)
    std::this_thread::sleep_for(10ms);
  return counter.load() >= value;
}

class MenuTest : public RuntimeTest {
 protected:
  void SetUp() override {
    testHost().setMenus(MenuSet::desktopMenus());
    for (UInt8 window = 8; window <= 10; ++window) testHost().setTextViewPresent(window, true);
    RuntimeTest::SetUp();
  }
  void TearDown() override {
    t_SetMenuHandler({});
    t_SetPasteHandler({});
    RuntimeTest::TearDown();
  }
};

TEST_F(MenuTest, StartUpScanRemovesPlatformItemsAndReportsTheMissingGermanMenus) {
  std::vector<HeadlessHost::Menu> menus = MenuSet::desktopMenus();
  menus[1].Items.insert(menus[1].Items.end(),
                        {{"", 0}, {"Start Dictation…", 0}, {"Emoji & Symbols", 0}});
  menus[2].Items.insert(menus[2].Items.begin() + 3, {"Tile Window to Left of Screen", 0});
  testHost().setMenus(menus);
  testHost().appendToTextView(PasteboardWindowNumber, "old text");
  MemoryInitStarted = false;
  t_InitMemory();

  const std::string missing = "t_MenuItemIndex: Menu not found.";
  EXPECT_EQ(logLines(),
            (Lines{"t_InitMemory: Start.", missing, missing, missing, missing, missing,
                   "t_MenuItemTitle: Menu not found.", "t_MenuItemDelete: Menu not found.", missing,
                   "*** Found Window Menu Item Tile Window to Left of Screen", missing, missing,
                   "t_InitMemory: End."}));
  EXPECT_EQ(testHost().menus(), MenuSet::desktopMenus());
  EXPECT_EQ(testHost().textViewText(PasteboardWindowNumber), "");
}

TEST_F(MenuTest, ItemsAreFoundNamedAndDeletedByPosition) {
  EXPECT_EQ(std::make_tuple(t_MenuItemIndex("Edit", "Paste"), t_MenuItemIndex("Edit", "Cut"),
                            t_MenuItemIndex("Bearbeiten", "Paste")),
            std::make_tuple(2, -1, -2));
  EXPECT_EQ((Lines{t_MenuItemTitle("Edit", 65535), t_MenuItemTitle("Edit", 0),
                   t_MenuItemTitle("Edit", 3), t_MenuItemTitle("Extras", 0)}),
            (Lines{"Paste", "Copy Picture", "", ""}));

  t_MenuItemDelete("Edit", 0);
  EXPECT_EQ(t_MenuItemTitle("Edit", 0), "Copy Text");
  t_MenuItemDelete("Edit", -1);
  t_MenuItemDelete("Program", 65535);
  EXPECT_EQ(t_MenuItemIndex("Program", "Program Action"), -1);
  t_MenuItemDelete("Program", 65535);
  t_MenuItemDelete("Program", 0);
  t_MenuItemDelete("Extras", 0);
  EXPECT_EQ(logLines(), (Lines{
                            "t_MenuItemIndex: Menu not found.",
                            "t_MenuItemTitle: Item position out of range",
                            "t_MenuItemTitle: Menu not found.",
                            "t_MenuItemDelete: Item position out of range",
                            "t_MenuItemDelete: Item position out of range",
                            "t_MenuItemDelete: Item position out of range",
                            "t_MenuItemDelete: Menu not found.",
                        }));
}

TEST_F(MenuTest, ProgramChoicesStartTheHandlerAndBuiltInOnesDoNotButAllAreQueued) {
  std::atomic<int> handled{0};
  t_SetMenuHandler([&handled] { ++handled; });
  t_WindowFront(VirtualPrinterWindowNumber);

  t_MenuEventHandler(choice(210, "Window", "Hide Virtual Printer"));
  EXPECT_FALSE(testHost().windowState(VirtualPrinterWindowNumber).Frame.Visible);
  t_MenuItem programItem = choice(0, "Program", "Program Action");
  programItem.KeyChar = "p";
  programItem.KeyAsc = 'p';
  programItem.KeyMods = CommandFlag;
  t_MenuEventHandler(programItem);
  t_MenuEventHandler(choice(100, "File", "Open…"));  // no built-in action serves it yet
  ASSERT_TRUE(reaches(handled, 2));
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(handled.load(), 2);

  ASSERT_TRUE(MenuEventPending);
  const t_MenuEvent hidden = *t_TakeMenuEvent();
  EXPECT_EQ(std::tie(hidden.Kind, hidden.ItemAction, hidden.ItemTitle),
            std::make_tuple(3, 210, "Hide Virtual Printer"));
  const t_MenuEvent program = *t_TakeMenuEvent();
  EXPECT_EQ(std::tie(program.MenuTitle, program.ItemKeyChar, program.ItemKeyAsc),
            std::make_tuple("Program", "p", 'p'));
  EXPECT_EQ(program.ItemKeyMods, static_cast<std::uint64_t>(CommandFlag));
  EXPECT_GT(program.Time, 0);
  EXPECT_EQ(t_TakeMenuEvent()->ItemAction, 100);
  EXPECT_FALSE(MenuEventPending);

  t_MenuItem orphan = choice(210, "Window", "Hide Virtual Printer");
  orphan.InMenu = false;
  t_MenuEventHandler(orphan);
  const t_MenuEvent orphanEvent = *t_TakeMenuEvent();
  EXPECT_EQ(
      std::tie(orphanEvent.Kind, orphanEvent.ItemTitle, orphanEvent.ItemAction, orphanEvent.Time),
      std::make_tuple(0, "", 0, 0));
}

TEST_F(MenuTest, GraphicWindowActionsNeedAnInitialisedWindow) {
  const int beeps = testHost().beeps();
  t_MenuEventHandler(choice(213));
  EXPECT_EQ(logLines(), Lines{"t_MenuEventHandler: Window #0 not initialized."});
  EXPECT_EQ(testHost().beeps(), beeps + 1);
  EXPECT_FALSE(Windows[0].Visible);

  initTextWindow(7, 8, 4, 2);
  t_CursorHome(7);
  t_ClearEndOfWindow(7);
  t_Print(7, "HI");
  t_MenuEventHandler(choice(227));
  EXPECT_TRUE(Windows[7].Visible);
  EXPECT_EQ(testHost().frontWindow(), 7);
  t_MenuEventHandler(choice(111, "Edit"));
  EXPECT_EQ(t_PasteboardText(), "HI\r\r");
  t_MenuEventHandler(choice(110, "Edit"));
  EXPECT_EQ(
      Position(testHost().pasteboardImage().Width, testHost().pasteboardImage().Pixels.size()),
      Position(64, 64 * 64 * 4));

  std::atomic<int> pasted{0};
  t_SetPasteHandler([&pasted] { ++pasted; });
  t_MenuEventHandler(choice(113, "Edit"));
  EXPECT_EQ(pasted.load(), 1);
  t_MenuEventHandler(choice(228));
  EXPECT_FALSE(Windows[7].Visible);
  EXPECT_EQ(testHost().frontWindow(), NoWindow);
  t_MenuEventHandler(choice(113, "Edit"));
  t_MenuEventHandler(choice(110, "Edit"));
  EXPECT_EQ(pasted.load(), 1);
  EXPECT_EQ(testHost().beeps(), beeps + 3);
}

TEST_F(MenuTest, PrinterAndConsoleCollectTextUntilCleared) {
  t_PrinterPrint("LIST\n");
  t_PrinterPrint("10 PRINT\n");
  t_ConsolePrint("ready");
  EXPECT_EQ(testHost().textViewText(VirtualPrinterWindowNumber), "LIST\n10 PRINT\n");
  EXPECT_EQ(testHost().textViewText(SystemConsoleWindowNumber), "ready");

  t_WindowFront(VirtualPrinterWindowNumber);
  t_MenuEventHandler(choice(111, "Edit"));
  EXPECT_EQ(t_PasteboardText(), "LIST\n10 PRINT\n");
  t_MenuEventHandler(choice(112));
  t_ConsoleClear();
  EXPECT_EQ(testHost().textViewText(VirtualPrinterWindowNumber), "");
  EXPECT_EQ(testHost().textViewText(SystemConsoleWindowNumber), "");
  t_SetPasteboardText("pasted");
  EXPECT_EQ(t_PasteboardText(), "pasted");

  const int beeps = testHost().beeps();
  testHost().setTextViewPresent(VirtualPrinterWindowNumber, false);
  testHost().setTextViewPresent(SystemConsoleWindowNumber, false);
  t_PrinterPrint("lost");
  t_MenuEventHandler(choice(111, "Edit"));
  t_MenuEventHandler(choice(114));
  t_PrinterClear();
  EXPECT_EQ(logLines(),
            (Lines{"t_PrinterPrint: Virtual printer window is nil, resource undefined.",
                   "t_MenuEventHandler: Virtual printer window is nil, resource undefined.",
                   "t_MenuEventHandler: System console window is nil, resource undefined.",
                   "t_PrinterClear: Virtual printer window is nil, resource undefined."}));
  EXPECT_EQ(testHost().beeps(), beeps + 4);
  EXPECT_EQ(t_PasteboardText(), "pasted");
}

TEST_F(MenuTest, FilePanelActionsKeepTheChosenPathAndFilesReadWhole) {
  const TestFolder folder("rvtools-menus-");
  const std::string path = folder.path("rvtools-menus.txt");
  std::ofstream(path) << "10 PRINT \"HI\"\n";
  EXPECT_FALSE(t_MenuActionOf(100));
  t_AddMenuAction({100, 100, "Open a listing", "Choose a file", "", "txt", ""});
  t_AddMenuAction({100, 101, "Never used: the first entry of a tag serves it", "", "", "", ""});
  testHost().setFilePanelAnswer(path);
  t_MenuEventHandler(choice(100, "File", "Open…"));
  testHost().setFilePanelAnswer("");

  EXPECT_EQ(testHost().lastFilePanel().Title, "Open a listing");
  EXPECT_FALSE(testHost().lastFilePanel().Save);
  const t_MenuAction chosen = *t_MenuActionOf(100);
  EXPECT_EQ(std::tie(chosen.FilePath, chosen.FileName), std::tie(path, "rvtools-menus.txt"));
  const std::vector<UInt8> bytes = t_ReadFile(chosen.FilePath);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "10 PRINT \"HI\"\n");
  EXPECT_TRUE(t_ReadFile(path + ".missing").empty());
  std::remove(path.c_str());
}

}  // namespace
}  // namespace rvtools::testing
