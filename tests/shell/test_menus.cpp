// The menus on the offscreen platform: one set of menus with the tags of the headless host in
// every window's bar, chosen items reaching the runtime, and the printer's and console's views.
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTest>

#include "rvtools/headless.hpp"
#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

class MenuTest : public ShellTest {};

std::vector<HeadlessHost::Menu> menusOf(const QList<QMenu*>& menus) {
  std::vector<HeadlessHost::Menu> described;
  for (const QMenu* menu : menus) {
    HeadlessHost::Menu& entry = described.emplace_back();
    entry.Title = menu->title().toStdString();
    for (const QAction* item : menu->actions()) {
      entry.Items.push_back({item->text().toStdString(), item->property("tag").toLongLong()});
    }
  }
  return described;
}

QAction* itemTitled(const QString& menu, const QString& title) {
  for (QAction* item : shellDelegate().menuTitled(menu)->actions()) {
    if (item->text() == title) return item;
  }
  return nullptr;
}

TEST_F(MenuTest, EveryWindowShowsTheOneMenuSetWithTheHeadlessTags) {
  const QList<QMenu*> menus = shellDelegate().menus();
  EXPECT_EQ(menusOf(menus), HeadlessHost::englishMenus());
  for (UInt8 n = 0; n <= MainWindowNumber; ++n) {
    const auto* bar = shellDelegate().window(n)->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr) << "window " << int(n);
    QList<QMenu*> shown;
    for (QAction* entry : bar->actions()) shown.append(entry->menu<QMenu*>());
    EXPECT_EQ(shown, menus) << "window " << int(n);
  }

  QAction* program = itemTitled("Program", "Program Action");
  t_MenuItemDelete("Program", 65535);
  EXPECT_EQ(t_MenuItemIndex("Program", "Program Action"), -1);
  EXPECT_TRUE(shellDelegate().menuTitled("Program")->actions().isEmpty());
  shellDelegate().menuTitled("Program")->addAction(program);
  EXPECT_EQ(t_MenuItemTitle("Edit", 65535), "Paste");
}

TEST_F(MenuTest, ChosenItemsReachTheMenuHandlerWithTheirTags) {
  initGraphicWindow(0, 64, 48, 8, false);
  itemTitled("Window", "Show Window 0")->trigger();
  EXPECT_TRUE(graphicWindow(0).isVisible());
  EXPECT_TRUE(Windows[0].Visible);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&graphicWindow(0)));
  EXPECT_EQ(host().frontWindow(), 0);

  itemTitled("Edit", "Copy Picture")->trigger();
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(64, 48));
  itemTitled("Window", "Hide Window 0")->trigger();
  EXPECT_FALSE(graphicWindow(0).isVisible());

  ASSERT_EQ(MenuEventQueue.count(), 3u);
  const t_MenuEvent first = *t_TakeMenuEvent();
  EXPECT_EQ(first.Kind, 3);
  EXPECT_EQ(first.MenuTitle, "Window");
  EXPECT_EQ(first.ItemTitle, "Show Window 0");
  EXPECT_EQ(first.ItemAction, 213);
  EXPECT_EQ(t_TakeMenuEvent()->ItemAction, 110);
  itemTitled("Edit", "Copy Text")->trigger();
  const std::optional<t_MenuEvent> copyText = MenuEventQueue.last();
  ASSERT_TRUE(copyText.has_value());
  EXPECT_EQ(copyText->ItemKeyChar, "c");
  EXPECT_EQ(copyText->ItemKeyAsc, 'c');
  EXPECT_EQ(copyText->ItemKeyMods, static_cast<std::uint64_t>(CommandFlag));
}

TEST_F(MenuTest, PrinterAndConsoleShowTheirTextUnderAColumnRuler) {
  EXPECT_TRUE(shellDelegate().VirtualPrinterRuler->text().startsWith("12345678901234567890"));
  EXPECT_TRUE(shellDelegate().SystemConsoleRuler->text().startsWith("12345678901234567890"));
  t_PrinterPrint("10 PRINT\n");
  t_PrinterPrint("20 END");
  t_ConsolePrint("ready");
  EXPECT_EQ(shellDelegate().VirtualPrinterTextView->toPlainText(), "10 PRINT\n20 END");
  EXPECT_EQ(shellDelegate().SystemConsoleTextView->toPlainText(), "ready");

  itemTitled("Window", "Show Virtual Printer")->trigger();
  ASSERT_TRUE(QTest::qWaitForWindowActive(shellDelegate().VirtualPrinterWindow));
  itemTitled("Edit", "Copy Text")->trigger();
  EXPECT_EQ(t_PasteboardText(), "10 PRINT\n20 END");
  itemTitled("Window", "Clear Virtual Printer")->trigger();
  t_ConsoleClear();
  EXPECT_EQ(shellDelegate().VirtualPrinterTextView->toPlainText(), "");
  EXPECT_EQ(shellDelegate().SystemConsoleTextView->toPlainText(), "");
}

}  // namespace
}  // namespace rvtools::testing
