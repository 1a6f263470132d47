// SPDX-License-Identifier: MIT
// The graphic windows and views on the offscreen platform: keys and clicks reach the runtime's
// queues, the close box only reports, the refresh draws the picture scaled crisply.
#include <QImage>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTest>
#include <chrono>
#include <set>
#include <tuple>

#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

using Clock = std::chrono::steady_clock;

class ViewTest : public ShellTest {};

TEST_F(ViewTest, KeysBecomeEventsOfTheViewsWindow) {
  initGraphicWindow(2, 64, 48, 8, false);
  QWidget& view = graphicWindow(2).view();
  QTest::keyClick(&view, Qt::Key_Left);
  QTest::keyClick(&view, Qt::Key_Backspace);
  QTest::keyClick(&view, 'q');
  ASSERT_EQ(EventQueue.count(), 3u);
  const t_Event left = *EventQueue.takeFirst();
  EXPECT_EQ(std::tie(left.Kind, left.Window, left.Value), std::make_tuple(1, 2, 8));
  EXPECT_TRUE(left.CursorKeyPressed);
  EXPECT_EQ(EventQueue.takeFirst()->Value, 127);
  EXPECT_EQ(EventQueue.takeFirst()->Value, 'q');
  EXPECT_FALSE(KeyIsDown);
}

// A key held down repeats as releases and presses marked as repeats; it is released when it
// really goes up, or when the view loses the keyboard and its release would go elsewhere.
TEST_F(ViewTest, KeysAreHeldUntilTheyReallyGoUp) {
  initGraphicWindow(2, 64, 48, 8, false);
  QWidget& view = graphicWindow(2).view();
  const auto send = [&](QEvent::Type type, bool repeat) {
    QKeyEvent event(type, Qt::Key_D, {}, 32 + 8, 0, 0, "d", repeat);  // evdev code of D: 32
    QCoreApplication::sendEvent(&view, &event);
  };
  viewKeyReleased(Key::D);
  send(QEvent::KeyPress, false);
  EXPECT_TRUE(t_KeyDown(Key::D));
  send(QEvent::KeyRelease, true);
  send(QEvent::KeyPress, true);
  EXPECT_TRUE(t_KeyDown(Key::D));
  send(QEvent::KeyRelease, false);
  EXPECT_FALSE(t_KeyDown(Key::D));
  send(QEvent::KeyPress, false);
  QFocusEvent focusOut(QEvent::FocusOut);
  QCoreApplication::sendEvent(&view, &focusOut);
  EXPECT_FALSE(t_KeyDown(Key::D));
  EventQueue.clear();
}

// Keys as an X server with a German layout delivers them: the key right of T types "z", AltGr+E
// the euro sign, AltGr+Q "@", and the dead circumflex left of 1 comes without text.
TEST_F(ViewTest, GermanKeysGiveTheCharactersOnTheirCaps) {
  initGraphicWindow(1, 64, 48, 8, false);
  QWidget& view = graphicWindow(1).view();
  auto press = [&](int key, quint32 evdevCode, const QString& text, Qt::KeyboardModifiers mods) {
    QKeyEvent event(QEvent::KeyPress, key, mods, evdevCode + 8, 0, 0, text);
    QCoreApplication::sendEvent(&view, &event);
    const std::optional<t_Event> queued = EventQueue.takeFirst();
    return queued ? std::pair{queued->Index, queued->Value} : std::pair<Int, Int>{-1, -1};
  };
  using Key = std::pair<Int, Int>;
  EXPECT_EQ(press(Qt::Key_Z, 21, "z", {}), Key(16, 'z'));
  EXPECT_EQ(press(Qt::Key_E, 18, QString(QChar(0x20AC)), Qt::GroupSwitchModifier), Key(14, 0xA4));
  EXPECT_EQ(press(Qt::Key_At, 16, "@", Qt::GroupSwitchModifier), Key(12, '@'));
  EXPECT_EQ(press(Qt::Key_Dead_Circumflex, 41, "", {}), Key(10, 0x5E));
  EXPECT_EQ(press(Qt::Key_Dead_Acute, 13, "", {}), Key(24, 0xB4));
  EXPECT_EQ(press(Qt::Key_Dead_Grave, 13, "", Qt::ShiftModifier), Key(24, 0x60));
}

TEST_F(ViewTest, ClicksAddressPicturePixelsAtEveryScale) {
  initGraphicWindow(0, 64, 48, 8, false);
  t_WindowFront(0);
  shell::GraphicWindow& window = graphicWindow(0);
  auto clickPosition = [](QWidget& target, QPoint point, Qt::MouseButton button) {
    QTest::mouseClick(&target, button, {}, point);
    const std::optional<t_Event> event = t_TakeMouseEvent();
    return event ? std::pair{event->ClickX, event->ClickY} : std::pair<Int, Int>{-9, -9};
  };
  using Position = std::pair<Int, Int>;
  // Points of the window's content count from its top left, below the menu bar.
  const int top = window.menuBarHeight();
  auto at = [top](int x, int y) { return QPoint(x, y + top); };
  // A click at the content's point (8, 8) lands in the view's top-left corner.
  EXPECT_EQ(clickPosition(window, at(8, 8), Qt::LeftButton), Position(0, 0));
  EXPECT_EQ(clickPosition(window.view(), {63, 47}, Qt::LeftButton), Position(63, 47));
  EXPECT_EQ(clickPosition(window, at(3, 20), Qt::LeftButton), Position(-1, 12));
  EXPECT_EQ(clickPosition(window, at(75, 20), Qt::LeftButton), Position(-2, 12));
  EXPECT_EQ(clickPosition(window, at(20, 60), Qt::RightButton), Position(12, -2));
  // 170 x 140 holds the 80 x 64 content twice, centred 5 and 6 pixels in.
  window.resizeContent(170, 140);
  EXPECT_EQ(clickPosition(window.view(), {10, 21}, Qt::LeftButton), Position(5, 10));
  EXPECT_EQ(clickPosition(window, at(5 + 2 * 72, 30), Qt::LeftButton), Position(-2, 4));

  std::vector<std::string> lines = logLines();
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("t_Mouse"); });
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], "t_MouseEventHandler: Graphic #0 window, X = 0, Y = 0");
  EXPECT_EQ(lines[1], "t_MouseEventHandler: Calling program mouse handler asynchronously.");
  EXPECT_FALSE(LeftMouseDown);
  EXPECT_FALSE(RightMouseDown);
}

TEST_F(ViewTest, CloseBoxReportsGraphicWindowsAndHidesOthers) {
  initGraphicWindow(1, 64, 48, 8, false);
  t_WindowFront(1);
  QWidget& window = graphicWindow(1);
  ASSERT_TRUE(window.isVisible());
  EXPECT_FALSE(window.close());
  EXPECT_FALSE(window.isVisible());
  EXPECT_FALSE(Windows[1].Visible);
  EXPECT_TRUE(Windows[1].Initialized);
  EXPECT_EQ(MouseEventQueue.count(), 0u);
  EXPECT_EQ(logLines().back(), "t_MouseEventPostCloseBoxClick: Window = 1");

  QWidget& printer = *shellDelegate().VirtualPrinterWindow;
  printer.show();
  EXPECT_TRUE(printer.close());
  EXPECT_FALSE(printer.isVisible());
  EXPECT_EQ(shellDelegate().windowNumber(&printer), VirtualPrinterWindowNumber);
  EXPECT_EQ(shellDelegate().windowNumber(shellDelegate().VirtualPrinterTextView), NoWindow);
}

TEST_F(ViewTest, RefreshDrawsThePictureScaledCrisply) {
  initGraphicWindow(3, 64, 48, 8, true);
  VideoMemory[Windows[3].MemoryStart] = 255;  // the top-left pixel white, the rest black
  const auto shown = Clock::now();
  t_WindowFront(3);
  ASSERT_TRUE(QTest::qWaitFor([] { return Windows[3].UpdateFinished != 0; }, 1000));
  EXPECT_LT(Clock::now() - shown, std::chrono::milliseconds(250));

  shell::GraphicWindow& window = graphicWindow(3);
  window.resizeContent(170, 140);
  const int top = window.menuBarHeight();
  const QImage image = window.grab(QRect(0, top, 170, 140)).toImage();
  const QColor border(PaletteRed[5], PaletteGreen[5], PaletteBlue[5]);
  EXPECT_EQ(image.pixelColor(2, 2), border);
  EXPECT_EQ(image.pixelColor(5 + 15, 6 + 20), border);
  for (const QPoint white : {QPoint(21, 22), QPoint(22, 23)}) {
    EXPECT_EQ(image.pixelColor(white), QColor(Qt::white));
  }
  for (const QPoint black : {QPoint(23, 22), QPoint(21, 24), QPoint(100, 80)}) {
    EXPECT_EQ(image.pixelColor(black), QColor(Qt::black));
  }
  EXPECT_TRUE(Windows[3].VerticalBlank);
}

// Full screen: the same whole-number scaling, the border colour all around, no menu bar, and
// keys and clicks as in the window; Meta+F goes there and back, Escape stays the program's.
TEST_F(ViewTest, FullScreenScalesByWholeFactorsAndKeepsKeysAndClicks) {
  initGraphicWindow(0, 64, 48, 8, true);
  bringToFront(0);
  shell::GraphicWindow& window = graphicWindow(0);
  QWidget& view = window.view();
  const QRect normal = window.geometry();
  QTest::keyClick(&view, Qt::Key_F, Qt::MetaModifier);
  const QRect screen = window.screen()->geometry();
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.geometry() == screen; }));
  EXPECT_TRUE(window.isFullScreen());
  EXPECT_EQ(window.menuBarHeight(), 0);
  // The 80 x 64 content fits min(width / 80, height / 64) times, whole.
  const int scale = std::min(screen.width() / 80, screen.height() / 64);
  EXPECT_EQ(view.size(), QSize(64 * scale, 48 * scale));
  QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(scale * 10, scale * 5));
  const std::optional<t_Event> click = t_TakeMouseEvent();
  ASSERT_TRUE(click.has_value());
  EXPECT_EQ(click->ClickX, 10);
  EXPECT_EQ(click->ClickY, 5);
  QTest::keyClick(&view, Qt::Key_Escape);
  EXPECT_EQ(EventQueue.takeFirst()->Value, 27);
  EXPECT_TRUE(window.isFullScreen());

  const QImage image = window.grab().toImage();
  const QColor border(PaletteRed[5], PaletteGreen[5], PaletteBlue[5]);
  EXPECT_EQ(image.pixelColor(1, 1), border);
  EXPECT_EQ(image.pixelColor(image.width() - 2, image.height() - 2), border);

  QTest::keyClick(&view, Qt::Key_F, Qt::MetaModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !window.isFullScreen(); }));
  EXPECT_EQ(window.geometry(), normal);
  EXPECT_GT(window.menuBarHeight(), 0);
}

// Auxiliary windows that the program did not place open at places of their own, wholly on the
// screen, clear of the menu bar of the graphic window in front.
TEST_F(ViewTest, AuxiliaryWindowsOpenAtPlacesOfTheirOwn) {
  initGraphicWindow(0, 64, 48, 8, false);
  bringToFront(0);
  const QWidget& graphic = graphicWindow(0);
  const QRect menuBar(graphic.geometry().topLeft(),
                      QSize(graphic.width(), graphicWindow(0).menuBarHeight()));
  const QRect screen = graphic.screen()->availableGeometry();
  std::set<std::pair<int, int>> places;
  for (UInt8 n = PasteboardWindowNumber; n <= MainWindowNumber; ++n) {
    QWidget& window = *shellDelegate().window(n);
    window.setAttribute(Qt::WA_Moved, false);
    t_WindowFront(n);
    const QRect frame = window.frameGeometry();
    EXPECT_TRUE(screen.contains(frame)) << int(n);
    EXPECT_FALSE(frame.intersects(menuBar)) << int(n);
    places.insert({frame.x(), frame.y()});
  }
  EXPECT_EQ(places.size(), 5u);
  // A window the program has placed stays where it was put.
  shellDelegate().PreferencesWindow->hide();
  t_WindowPos(PreferencesWindowNumber, 3, 4);
  t_WindowFront(PreferencesWindowNumber);
  EXPECT_EQ(shellDelegate().PreferencesWindow->frameGeometry().topLeft(), QPoint(3, 4));
}

}  // namespace
}  // namespace rvtools::testing
