// SPDX-License-Identifier: MIT
// The menus on the offscreen platform: one set with the headless host's tags in every window,
// choices reaching the runtime, items enabled only while they can act, file panels, text views.
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>

#include "rvtools/headless.hpp"
#include "shell/dialogs.hpp"
#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

class MenuTest : public ShellTest {};

// The menus as the runtime sees them: items with a tag (the host's own items have none).
std::vector<HeadlessHost::Menu> runtimeMenusOf(const QList<QMenu*>& menus) {
  std::vector<HeadlessHost::Menu> described;
  for (const QMenu* menu : menus) {
    HeadlessHost::Menu entry;
    entry.Title = menu->title().toStdString();
    for (const QAction* item : menu->actions()) {
      const QVariant tag = item->property("tag");
      if (!item->isSeparator() && !tag.isValid()) continue;
      entry.Items.push_back({item->text().toStdString(), tag.toLongLong()});
    }
    if (!entry.Items.empty()) described.push_back(entry);
  }
  return described;
}

TEST_F(MenuTest, EveryWindowShowsTheOneMenuSetWithTheHeadlessTags) {
  const QList<QMenu*> menus = shellDelegate().menus();
  EXPECT_EQ(runtimeMenusOf(menus), MenuSet::desktopMenus());
  for (UInt8 n = 0; n <= MainWindowNumber; ++n) {
    const auto* bar = shellDelegate().window(n)->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr) << "window " << int(n);
    QList<QMenu*> shown;
    for (QAction* entry : bar->actions()) shown.append(entry->menu<QMenu*>());
    EXPECT_EQ(shown, menus) << "window " << int(n);
  }

  QAction* program = menuItem("Program", "Program Action");
  t_MenuItemDelete("Program", 65535);
  EXPECT_EQ(t_MenuItemIndex("Program", "Program Action"), -1);
  EXPECT_TRUE(shellDelegate().menuTitled("Program")->actions().isEmpty());
  shellDelegate().menuTitled("Program")->addAction(program);
  EXPECT_EQ(t_MenuItemTitle("Edit", 65535), "Paste");
}

TEST_F(MenuTest, ChosenItemsReachTheMenuHandlerWithTheirTags) {
  initGraphicWindow(0, 64, 48, 8, false);
  choose("Window", "Show Window 0");
  EXPECT_TRUE(graphicWindow(0).isVisible());
  EXPECT_TRUE(Windows[0].Visible);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&graphicWindow(0)));
  EXPECT_EQ(host().frontWindow(), 0);

  choose("Edit", "Copy Picture");
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(64, 48));
  choose("Window", "Hide Window 0");
  EXPECT_FALSE(graphicWindow(0).isVisible());

  ASSERT_EQ(MenuEventQueue.count(), 3u);
  const t_MenuEvent first = *t_TakeMenuEvent();
  EXPECT_EQ(first.Kind, 3);
  EXPECT_EQ(first.MenuTitle, "Window");
  EXPECT_EQ(first.ItemTitle, "Show Window 0");
  EXPECT_EQ(first.ItemAction, 213);
  EXPECT_EQ(t_TakeMenuEvent()->ItemAction, 110);
  choose("Edit", "Copy Text");
  const std::optional<t_MenuEvent> copyText = MenuEventQueue.last();
  ASSERT_TRUE(copyText.has_value());
  EXPECT_EQ(copyText->ItemKeyChar, "c");
  EXPECT_EQ(copyText->ItemKeyAsc, 'c');
  EXPECT_EQ(copyText->ItemKeyMods, static_cast<std::uint64_t>(CommandFlag));
}

// Items that could do nothing are disabled; the host's own items queue no menu event.
TEST_F(MenuTest, ItemsAreEnabledOnlyWhileTheyCanAct) {
  auto enabled = [](const QString& menu, const QString& title) {
    emit shellDelegate().menuTitled(menu)->aboutToShow();
    return menuItem(menu, title)->isEnabled();
  };
  EXPECT_FALSE(enabled("File", "Open…"));
  EXPECT_FALSE(enabled("File", "Save…"));
  EXPECT_FALSE(enabled("Program", "Program Action"));
  EXPECT_FALSE(enabled("Window", "Show Window 3"));
  EXPECT_TRUE(enabled("Window", "Show Virtual Printer"));
  EXPECT_TRUE(enabled("Edit", "Paste"));

  t_AddMenuAction({MenuTag::Save, MenuTag::Save, "Save the tub", "", "tub.txt", "txt", ""});
  t_SetMenuHandler([] {});
  initGraphicWindow(3, 64, 48, 8, false);
  EXPECT_FALSE(enabled("File", "Open…"));
  EXPECT_TRUE(enabled("File", "Save…"));
  EXPECT_TRUE(enabled("Program", "Program Action"));
  EXPECT_TRUE(enabled("Window", "Show Window 3"));
  EXPECT_FALSE(enabled("Window", "Show Window 4"));
  t_SetMenuHandler({});
  EXPECT_FALSE(enabled("Program", "Program Action"));
  // A program still reaches the refusal of an item the menu disables.
  t_MenuEventHandler({true, "Window", "Show Window 4", "", 0, 0, MenuTag::showGraphicWindow(4)});
  EXPECT_EQ(logLines().back(), "t_MenuEventHandler: Window #4 not initialized.");
  // Picture and text of a graphic window in front; printing only for the printer's paper.
  t_WindowFront(3);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&graphicWindow(3)));
  EXPECT_TRUE(enabled("File", "Save Picture…"));
  EXPECT_FALSE(enabled("File", "Save Text…"));  // a window without text memory
  EXPECT_FALSE(enabled("File", "Print…"));
  EXPECT_TRUE(enabled("View", "Full Screen"));
  t_WindowFront(VirtualPrinterWindowNumber);
  ASSERT_TRUE(QTest::qWaitForWindowActive(shellDelegate().VirtualPrinterWindow));
  EXPECT_FALSE(enabled("File", "Save Picture…"));
  EXPECT_TRUE(enabled("File", "Save Text…"));
  EXPECT_TRUE(enabled("File", "Print…"));
  EXPECT_FALSE(enabled("View", "Full Screen"));
  MenuEventQueue.clear();
  menuItem("View", "Full Screen")->trigger();
  EXPECT_EQ(MenuEventQueue.count(), 0u);
}

TEST_F(MenuTest, FilePanelsOfTheProgramsEntriesAreAnsweredAndKeepThePath) {
  t_AddMenuAction({MenuTag::Open, MenuTag::Open, "Load a tub", "Pick one", "", "txt,tub", ""});
  t_AddMenuAction({MenuTag::Save, MenuTag::Save, "Save the tub", "", "tub.txt", "txt", ""});
  const QTemporaryDir folder;
  const QString saved = folder.filePath("tub.txt"), opened = folder.filePath("old.tub");
  QString asked;
  shell::setDialogRunner([&](QDialog& dialog) {
    auto& panel = dynamic_cast<QFileDialog&>(dialog);
    const bool save = panel.acceptMode() == QFileDialog::AcceptSave;
    asked = panel.windowTitle() + " | " + panel.nameFilters().join(';') + " | " +
            QFileInfo(panel.selectedFiles().value(0)).fileName();
    panel.selectFile(save ? saved : opened);
    return int{QDialog::Accepted};
  });
  choose("File", "Save…");
  EXPECT_EQ(asked, "Save the tub | Files (*.txt) | tub.txt");
  EXPECT_EQ(t_MenuActionOf(MenuTag::Save)->FilePath, saved.toStdString());
  EXPECT_EQ(t_MenuActionOf(MenuTag::Save)->FileName, "tub.txt");
  choose("File", "Open…");
  EXPECT_TRUE(asked.startsWith("Load a tub | Files (*.txt *.tub) | "));
  EXPECT_EQ(t_MenuActionOf(MenuTag::Open)->FilePath, opened.toStdString());
  ASSERT_EQ(MenuEventQueue.count(), 2u);
  EXPECT_EQ(t_TakeMenuEvent()->ItemAction, MenuTag::Save);
  EXPECT_EQ(t_TakeMenuEvent()->ItemAction, MenuTag::Open);
}

TEST_F(MenuTest, PrinterAndConsoleShowTheirTextUnderAColumnRuler) {
  EXPECT_TRUE(shellDelegate().VirtualPrinterRuler->text().startsWith("12345678901234567890"));
  EXPECT_TRUE(shellDelegate().SystemConsoleRuler->text().startsWith("12345678901234567890"));
  t_ConsoleClear();
  t_PrinterClear();
  t_PrinterPrint("10 PRINT\n");
  t_PrinterPrint("20 END");
  t_ConsolePrint("ready");
  EXPECT_EQ(shellDelegate().VirtualPrinterTextView->toPlainText(), "10 PRINT\n20 END");
  EXPECT_EQ(shellDelegate().SystemConsoleTextView->toPlainText(), "ready");

  choose("Window", "Show Virtual Printer");
  ASSERT_TRUE(QTest::qWaitForWindowActive(shellDelegate().VirtualPrinterWindow));
  choose("Edit", "Copy Text");
  EXPECT_EQ(t_PasteboardText(), "10 PRINT\n20 END");
  choose("Window", "Clear Virtual Printer");
  t_ConsoleClear();
  EXPECT_EQ(shellDelegate().VirtualPrinterTextView->toPlainText(), "");
  EXPECT_EQ(shellDelegate().SystemConsoleTextView->toPlainText(), "");
}

}  // namespace
}  // namespace rvtools::testing
