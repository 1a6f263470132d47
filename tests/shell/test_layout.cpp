// SPDX-License-Identifier: MIT
// The picture layout, the auxiliary windows' first places and the key numbering, checked
// without windows.
#include <gtest/gtest.h>

#include "rvtools/input.hpp"
#include "shell/key_translation.hpp"
#include "shell/picture_layout.hpp"
#include "shell/window_placement.hpp"

namespace rvtools::shell {
namespace {

TEST(PictureLayoutTest, ScalesByWholeFactorsCentredAndFractionalOnlyBelowOne) {
  const PictureGeometry geometry{64, 48, 8, 8};  // content 80 x 64

  const PictureLayout exact = layoutPicture({80, 64}, 1.0, geometry);
  EXPECT_EQ(exact.Scale, 1.0);
  EXPECT_EQ(exact.View, QRect(8, 8, 64, 48));

  const PictureLayout enlarged = layoutPicture({250, 140}, 1.0, geometry);
  EXPECT_EQ(enlarged.Scale, 2.0);
  EXPECT_EQ(enlarged.Content, QRectF(45, 6, 160, 128));
  EXPECT_EQ(enlarged.View, QRect(61, 22, 128, 96));
  EXPECT_EQ(enlarged.windowCoordinates({61, 22}), QPointF(8, 56));

  const PictureLayout shrunk = layoutPicture({40, 64}, 1.0, geometry);
  EXPECT_EQ(shrunk.Scale, 0.5);
  EXPECT_EQ(shrunk.View, QRect(4, 20, 32, 24));
  // On a screen of two device pixels a point, 81 x 64 points hold the content 2 x 1 times in
  // points, so each picture pixel becomes 2 x 2 device pixels at whole factor 2.
  const PictureLayout dense = layoutPicture({81, 64}, 2.0, geometry);
  EXPECT_EQ(dense.Scale, 1.0);
  const PictureLayout denser = layoutPicture({120, 96}, 2.0, geometry);
  EXPECT_EQ(denser.Scale, 1.5);
  EXPECT_EQ(denser.View, QRect(12, 12, 96, 72));

  const PictureLayout empty = layoutPicture({300, 200}, 1.0, {});
  EXPECT_EQ(empty.View, QRect(0, 0, 300, 200));
}

TEST(WindowPlacementTest, BesideTheFrontWindowElseCascadedBelowItsMenuBarAlwaysOnScreen) {
  const QRect screen(0, 0, 1600, 1000);
  const QSize frame(400, 300);
  // Room to the right of a window 600 wide at (100, 50): beside it, one step lower each.
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, QRect(100, 50, 600, 400), 30, 0), QPoint(708, 50));
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, QRect(100, 50, 600, 400), 30, 2), QPoint(708, 114));
  // No room beside a wide window: over it, below its top 30 pixels, cascaded.
  const QRect wide(100, 50, 1400, 800);
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, wide, 30, 0), QPoint(132, 112));
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, wide, 30, 1), QPoint(164, 144));
  // Never off the screen; without a front window, cascaded from the screen's corner.
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, QRect(0, 650, 1500, 350), 30, 0), QPoint(32, 700));
  EXPECT_EQ(auxiliaryWindowPlace(screen, frame, {}, 0, 4), QPoint(160, 160));
}

TEST(KeyTranslationTest, PhysicalKeysMapToTheRuntimesNumbers) {
  // X11 key codes are evdev codes + 8. The keys: A, Q, Return, Escape, keypad 7, F1, Left, Up,
  // the key beside the left shift key, and the key left of 1, numbered as on an ISO keyboard.
  const int evdevCodes[] = {30, 16, 28, 1, 71, 59, 105, 103, 86, 41};
  const Int keyNumbers[] = {0, 12, 36, 53, 89, 122, 123, 126, 50, 10};
  for (std::size_t k = 0; k < std::size(evdevCodes); ++k) {
    EXPECT_EQ(keyNumberOfScanCode(evdevCodes[k] + 8), keyNumbers[k]) << evdevCodes[k];
  }
  EXPECT_EQ(keyNumberOfScanCode(0), Key::Unknown);
  EXPECT_EQ(keyNumberOfScanCode(29 + 8), Key::Unknown);  // left control
  EXPECT_EQ(keyNumberOfScanCode(100000), Key::Unknown);

  EXPECT_EQ(keyNumberOfQtKey(Qt::Key_7, false), 26);
  EXPECT_EQ(keyNumberOfQtKey(Qt::Key_7, true), 89);
  EXPECT_EQ(keyNumberOfQtKey(Qt::Key_Enter, true), 76);
  EXPECT_EQ(keyNumberOfQtKey(Qt::Key_F12, false), 111);
  EXPECT_EQ(keyNumberOfQtKey(Qt::Key_Launch0, false), Key::Unknown);

  EXPECT_EQ(modifierFlagsOf(Qt::ShiftModifier | Qt::MetaModifier), ShiftFlag | CommandFlag);
  EXPECT_EQ(modifierFlagsOf(Qt::AltModifier | Qt::ControlModifier | Qt::KeypadModifier),
            OptionFlag | ControlFlag | NumericPadFlag);
}

TEST(KeyTranslationTest, KeysWithoutTextStandForTheirOwnCharacters) {
  const QKeyEvent f3(QEvent::KeyPress, Qt::Key_F3, Qt::NoModifier);
  EXPECT_EQ(translateKey(f3).Characters, "\uF706");
  EXPECT_TRUE(translateKey(f3).Flags & FunctionFlag);
  const QKeyEvent shiftTab(QEvent::KeyPress, Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(translateKey(shiftTab).Characters, "\x19");
  EXPECT_EQ(translateKey(shiftTab).KeyCode, 48);
  const QKeyEvent euro(QEvent::KeyPress, Qt::Key_E, Qt::AltModifier, 18 + 8, 0, 0, "€");
  EXPECT_EQ(translateKey(euro).KeyCode, 14);
  EXPECT_EQ(translateKey(euro).Characters, "€");
  EXPECT_EQ(translateKey(euro).Flags, OptionFlag);
  const QKeyEvent shift(QEvent::KeyPress, Qt::Key_Shift, Qt::ShiftModifier);
  EXPECT_TRUE(translateKey(shift).ModifierKey);
}

}  // namespace
}  // namespace rvtools::shell
