// SPDX-License-Identifier: MIT
// Keys and the mouse: the values key presses queue, keys that act or are dropped, refusals, the
// program waiting for keys and yes/no answers, taking keys without waiting and the held keys,
// and clicks beyond the Int range.
#include <atomic>
#include <chrono>
#include <limits>
#include <thread>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

using namespace std::chrono_literals;

const std::string LeftArrow = "\xEF\x9C\x82";  // U+F702
const std::string F1 = "\xEF\x9C\x84";         // U+F704

class KeyboardTest : public RuntimeTest {
 protected:
  void SetUp() override {
    RuntimeTest::SetUp();
    initTextWindow(0, 8, 8, 2);
  }
  // The values of the events queued so far; the queue is empty afterwards.
  static std::vector<Int> takeValues() {
    std::vector<Int> values;
    while (auto event = EventQueue.takeFirst()) values.push_back(event->Value);
    return values;
  }
};

TEST_F(KeyboardTest, CursorFunctionAndDeleteKeysCarryTheirCodesAndFlags) {
  const Int before = static_cast<Int>(host().absoluteTime() * 1000);
  viewKeyDown(0, 123, LeftArrow, ShiftFlag | NumericPadFlag | FunctionFlag);
  viewKeyDown(0, 122, F1, 0);
  const t_Event left = *EventQueue.takeFirst();
  EXPECT_EQ(std::tie(left.Kind, left.Index, left.Description, left.Value, left.Mods, left.Window),
            std::make_tuple(1, 123, LeftArrow, 8, 0xA2, 0));
  EXPECT_TRUE(left.CursorKeyPressed && left.ShiftPressed && left.NumericPadPressed &&
              left.FnPressed);
  EXPECT_FALSE(left.FunctionKeyPressed || left.ControlPressed || left.OptionPressed);
  EXPECT_NEAR(left.Time, before, 5000);
  const t_Event f1 = *EventQueue.takeFirst();
  EXPECT_EQ(f1.Value, 129);
  EXPECT_TRUE(f1.FunctionKeyPressed && !f1.CursorKeyPressed);

  viewKeyDown(0, 51, "\x7F", 0);
  viewKeyDown(0, 117, "", 0);              // forward delete
  viewKeyDown(0, 48, "\x19", ShiftFlag);   // shifted tab
  viewKeyDown(0, 111, "\xEF\x9C\x8F", 0);  // F12, U+F70F
  viewKeyDown(0, 5, "\xEF\x9C\x83", 0);    // U+F703, just below the function keys
  viewKeyDown(0, 5, "\xC4\x80", 0);        // U+0100, the first character beyond Latin-1
  viewKeyDown(0, 5, "\xC3\xBF", 0);        // U+00FF
  EXPECT_EQ(takeValues(), (std::vector<Int>{127, 7, 20, 140, 255}));
}

// Every printable ASCII and Latin-1 character, DEL, and the option characters the keyboard table
// knows, come out of their key stroke as the code a program reads for them.
TEST_F(KeyboardTest, KeyStrokesOfCharactersTypeThoseCharacters) {
  std::vector<Int> expected;
  for (char32_t c = 32; c <= 255; ++c) {
    if (c >= 128 && c < 160) {
      EXPECT_EQ(keyStrokeOfCharacter(c), std::nullopt);
      continue;
    }
    const KeyStroke stroke = *keyStrokeOfCharacter(c);
    viewKeyDown(0, stroke.KeyNumber, stroke.Characters, stroke.Flags);
    expected.push_back(c);
  }
  for (const auto& [character, code] : {std::pair{U'€', 0xA4}, {U'≤', 0xC5}, {U'∞', 0xFF}}) {
    const KeyStroke stroke = *keyStrokeOfCharacter(character);
    viewKeyDown(0, stroke.KeyNumber, stroke.Characters, stroke.Flags);
    expected.push_back(code);
    EXPECT_EQ(fontCodeCharacter(static_cast<UInt8>(code)), character);
  }
  EXPECT_EQ(takeValues(), expected);
  const KeyStroke controlS = *keyStrokeOfCharacter(19);
  EXPECT_EQ(std::tie(controlS.KeyNumber, controlS.Flags), std::tie(Key::S, ControlFlag));
  EXPECT_EQ(keyStrokeOfCharacter(U'\n')->KeyNumber, Key::Return);
  EXPECT_EQ(keyStrokeOfCharacter(U'😀'), std::nullopt);
}

TEST_F(KeyboardTest, PastingTypesTheTextBehindTheWaitingKeys) {
  testHost().bringWindowToFront(0);
  viewKeyDown(0, Key::X, "x", 0);
  testHost().setPasteboardText("A1 \u00e9\u20ac\r\n\tb\x01\x7f\U0001F600\n");
  t_PasteAsKeys();
  EXPECT_EQ(takeValues(), (std::vector<Int>{'x', 'A', '1', ' ', 0xE9, 0xA4, 13, 9, 'b', 13}));

  Windows[0].Initialized = false;
  t_PasteAsKeys();
  EXPECT_EQ(logLines(), (Lines{"t_PasteAsKeys: Window #0 not initialized."}));
  EXPECT_TRUE(takeValues().empty());
  Windows[0].Initialized = true;
}

TEST_F(KeyboardTest, OptionDeadAndKeypadKeysBecomeFontCodesOrRedirect) {
  const std::string euro = "\xE2\x82\xAC";
  viewKeyDown(0, 14, euro, OptionFlag);
  viewKeyDown(0, 15, euro, OptionFlag);  // not on its own key: dropped
  viewKeyDown(0, 24, "", 0);
  viewKeyDown(0, 24, "", ShiftFlag);
  viewKeyDown(0, 35, "\xE2\x88\x8F", OptionFlag | ShiftFlag);  // U+220F, the second row of 35
  viewKeyDown(0, 45, "", OptionFlag);
  viewKeyDown(0, 1, "\xC3\xA5", OptionFlag);  // U+00E5 translates on key 0 only
  viewKeyDown(0, 86, "4", OptionFlag);
  viewKeyDown(0, 86, "4", NumericPadFlag);
  viewKeyDown(0, 37, "\x0C", ControlFlag);  // translates with option only
  viewKeyDown(0, 71, "\xEF\x9C\xB9", 0);    // keypad clear
  viewKeyDown(0, 89, "7", OptionFlag | ControlFlag);
  viewKeyDown(0, 92, "9", OptionFlag);
  EXPECT_EQ(takeValues(),
            (std::vector<Int>{0xA4, 0xB4, 0x60, 0xD0, 0x7E, 0xE5, 0xAA, '4', 12, 0xE5, 0xBC}));

  viewKeyDown(0, 89, "7", ControlFlag);
  EXPECT_EQ(Windows[0].TextRedirectOutput, 0);
  viewKeyDown(0, 91, "8", ControlFlag);
  EXPECT_EQ(Windows[0].TextRedirectOutput, 2);
  viewKeyDown(0, 92, "9", ControlFlag);
  EXPECT_EQ(Windows[0].TextRedirectOutput, 1);
  EXPECT_FALSE(EventPending);
}

TEST_F(KeyboardTest, RefusedKeysStillMarkAKeyDown) {
  MemoryInitialized = false;
  viewKeyDown(0, 0, "a", 0);
  EXPECT_TRUE(KeyIsDown);
  MemoryInitialized = true;
  viewKeyUp();
  EXPECT_FALSE(KeyIsDown);
  viewKeyDown(1, 0, "a", 0);
  viewKeyDown(9, 0, "a", 0);
  Windows[0].IgnoreEvents = true;
  viewKeyDown(0, 0, "a", ShiftFlag);
  EXPECT_TRUE(KeyIsDown);
  EXPECT_FALSE(ShiftDown);  // a dropped key leaves the modifiers alone
  EXPECT_FALSE(EventPending);
  EXPECT_EQ(logLines(), (Lines{"viewKeyDown: Graphic window (1) not initialized.",
                               "viewKeyDown: Graphic window (9) not initialized."}));

  Windows[0].IgnoreEvents = false;
  viewKeyDown(0, 0, "A", CapsLockFlag | ShiftFlag | CommandFlag);
  EXPECT_TRUE(CapsLockDown && ShiftDown && CommandDown && !ControlDown && !OptionDown && !FnDown);
  viewFlagsChanged(ControlFlag | OptionFlag | FunctionFlag);
  EXPECT_TRUE(!CapsLockDown && !ShiftDown && !CommandDown && ControlDown && OptionDown && FnDown);
}

TEST_F(KeyboardTest, GetKeySkipsValuelessEventsAndShowsTheCursorWhileItWaits) {
  t_Event withoutValue;
  withoutValue.Value = -1;
  t_Event surrogate;
  surrogate.Value = 0xD800;
  EventQueue.append(withoutValue);
  viewKeyDown(0, 41, "\xC3\xB6", 0);  // U+00F6
  EventQueue.append(surrogate);
  EXPECT_EQ(t_GetKey(0), "\xC3\xB6");
  EXPECT_EQ(LastEvent.Index, 41);
  EXPECT_EQ(t_GetKey(0), std::string(1, '\0'));
  // While it waits, the cursor shows.
  t_PrintSymbol(0, 'x', 0xC0, 1, 1);
  const std::string colorsBefore = screenColors(0);
  std::atomic<bool> cursorShown{false};
  std::thread typist([&] {
    // The cursor level is the one thing this thread may look at while the program thread draws.
    for (int i = 0; i < 500 && !cursorShown; ++i) {
      cursorShown = Windows[0].TextCursorLevel == 1;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    viewKeyDown(0, 4, "h", 0);
  });
  EXPECT_EQ(t_GetKey(0), "h");
  typist.join();
  EXPECT_TRUE(cursorShown);
  EXPECT_EQ(screenColors(0), colorsBefore);  // the cursor is gone again
  EXPECT_EQ(Windows[0].TextCursorLevel, 0);
}

TEST_F(KeyboardTest, KeysAppendedOnAnotherThreadArriveAllInOrder) {
  constexpr Int Keys = 100000;
  constexpr Int FirstKeyNumber = 200;  // beyond the key-code table: every key queues "k"
  std::thread interfaceThread([] {
    for (Int n = 0; n < Keys; ++n) viewKeyDown(0, FirstKeyNumber + n, "k", 0);
  });
  Int inOrder = 0;
  for (Int n = 0; n < Keys; ++n) {
    if (t_GetKey(0) == "k" && LastEvent.Index == FirstKeyNumber + n) ++inOrder;
  }
  interfaceThread.join();
  EXPECT_EQ(inOrder, Keys);
  EXPECT_EQ(EventQueue.count(), 0u);
}

TEST_F(KeyboardTest, YesNoAnswersAndTheirEcho) {
  const struct {
    std::string characters;
    Int defaultAnswer, expected;
  } cases[] = {{"\r", 1, 1}, {"y", 0, 1}, {"\x1B", 1, -1}, {"x", 1, -2},
               {"n", 1, 0},  {" ", 0, 0}, {"j", 0, 1},     {"\xC3\xA5", 1, -2}};
  for (const auto& answer : cases) {
    viewKeyDown(0, 5, answer.characters, 0);
    EXPECT_EQ(t_GetYesNo(0, answer.defaultAnswer, true), answer.expected) << answer.characters;
  }
  viewKeyDown(0, 5, "Y", 0);
  EXPECT_EQ(t_GetYesNo(0, 0, false), 1);
  // The last echo wraps the cursor; the second line stays untouched.
  EXPECT_EQ(screenText(0), "JJNNNNJN\n........\n");
  EXPECT_EQ(Windows[0].TextHpos * 100 + Windows[0].TextVpos, 102);
}

TEST_F(KeyboardTest, InKeyTakesWaitingKeysInOrderWithoutWaiting) {
  EXPECT_EQ(t_InKey(0), -1);
  t_Event withoutValue;
  withoutValue.Value = -1;
  t_Event surrogate;
  surrogate.Value = 0xD800;
  viewKeyDown(0, Key::A, "a", 0);
  EventQueue.append(withoutValue);
  viewKeyDown(0, Key::Left, LeftArrow, NumericPadFlag | FunctionFlag);
  EventQueue.append(surrogate);
  EXPECT_EQ(t_InKey(0), 'a');
  EXPECT_EQ(t_InKey(0), KeyValue::Left);
  EXPECT_EQ(LastEvent.Index, Key::Left);
  // Any window number takes the keys of all windows, as t_GetKey does.
  EXPECT_EQ(t_InKey(200), 0);
  EXPECT_EQ(t_InKey(0), -1);
  EXPECT_FALSE(EventPending);
  EXPECT_EQ(Windows[0].TextCursorLevel, 0);
  EXPECT_TRUE(logLines().empty());
}

// The held keys outlive a test's runtime, so each case first releases the keys it looks at.
TEST_F(KeyboardTest, KeyDownFollowsPressesAndReleasesOfTheInterfaceThread) {
  viewKeyReleased(Key::W);
  viewKeyReleased(Key::Left);
  EXPECT_FALSE(t_KeyDown(Key::W));
  viewKeyDown(0, Key::W, "w", 0);
  viewKeyUp();  // says that some key went up, not which
  Windows[0].IgnoreEvents = true;
  viewKeyDown(0, Key::Left, LeftArrow, 0);  // dropped, and held all the same
  EXPECT_TRUE(t_KeyDown(Key::W) && t_KeyDown(Key::Left));
  viewKeyReleased(Key::W);
  EXPECT_FALSE(t_KeyDown(Key::W));
  EXPECT_TRUE(t_KeyDown(Key::Left));
  viewKeyReleased(Key::Left);
  Windows[0].IgnoreEvents = false;
  for (const Int outside : {Int{-1}, Int{128}, Key::Unknown, std::numeric_limits<Int>::min()}) {
    viewKeyDown(0, outside, "x", 0);
    EXPECT_FALSE(t_KeyDown(outside)) << outside;
    viewKeyReleased(outside);
  }

  std::atomic<bool> seenHeld{false};
  std::thread interfaceThread([&] {
    viewKeyDown(0, Key::D, "d", 0);
    for (int i = 0; i < 5000 && !seenHeld; ++i) std::this_thread::sleep_for(1ms);
    viewKeyReleased(Key::D);
  });
  for (int i = 0; i < 5000 && !t_KeyDown(Key::D); ++i) std::this_thread::sleep_for(1ms);
  EXPECT_TRUE(t_KeyDown(Key::D));
  seenHeld = true;
  interfaceThread.join();
  EXPECT_FALSE(t_KeyDown(Key::D));
}

// The keys' window, 64 pixels in height, serves the clicks too.
using MouseTest = KeyboardTest;

TEST_F(MouseTest, PositionsBeyondTheIntRangeLieOutsideTheDrawingArea) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  constexpr Int Smallest = std::numeric_limits<Int>::min(),
                Largest = std::numeric_limits<Int>::max();
  t_MouseEventHandler(0, {}, std::numeric_limits<double>::quiet_NaN(), 1e300);
  t_MouseEventHandler(0, {}, -Infinity, -1e300);
  const std::optional<t_Event> first = t_TakeMouseEvent(), second = t_TakeMouseEvent();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(std::make_tuple(first->WindowX, first->WindowY, first->ClickX, first->ClickY),
            std::make_tuple(Int{0}, Largest, Int{0}, Int{-1}));
  EXPECT_EQ(std::make_tuple(second->WindowX, second->WindowY, second->ClickX, second->ClickY),
            std::make_tuple(Smallest, Smallest, Int{-1}, Int{-2}));
  EXPECT_EQ(logLines(), (Lines{"t_MouseEventHandler: Graphic #0 window, X = 0, Y = -1",
                               "t_MouseEventHandler: Calling program mouse handler "
                               "asynchronously.",
                               "t_MouseEventHandler: Graphic #0 window, X = -1, Y = -2",
                               "t_MouseEventHandler: Calling program mouse handler "
                               "asynchronously."}));
}

}  // namespace
}  // namespace rvtools::testing
