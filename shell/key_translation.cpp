// SPDX-License-Identifier: MIT
// Key translation: X11 key codes and Qt keys to the runtime's key numbers, the characters that
// function, cursor and paging keys stand for, and the modifier flags.
#include "shell/key_translation.hpp"

#include <array>
#include <utility>

#include "rvtools/keys.hpp"

namespace rvtools::shell {
namespace {

constexpr quint32 X11KeyCodeOffset = 8;
constexpr Int KeyNumberCount = 140;

// The runtime's key number of each evdev code (index), Key::Unknown where the numbering has none.
// The key left of 1 (evdev 41) and the key beside the left shift key (evdev 86) are numbered as
// on an ISO keyboard of this numbering, 10 and 50: so the dead circumflex left of 1 on
// a German keyboard is key 10, whose empty character the key handler turns into "^".
constexpr std::array<Int, KeyNumberCount> evdevKeyNumbers() {
  std::array<Int, KeyNumberCount> numbers{};
  for (Int& number : numbers) number = Key::Unknown;
  constexpr std::pair<int, Int> pairs[] = {
      {1, 53},    {2, 18},    {3, 19},    {4, 20},    {5, 21},    {6, 23},    {7, 22},
      {8, 26},    {9, 28},    {10, 25},   {11, 29},   {12, 27},   {13, 24},   {14, 51},
      {15, 48},   {16, 12},   {17, 13},   {18, 14},   {19, 15},   {20, 17},   {21, 16},
      {22, 32},   {23, 34},   {24, 31},   {25, 35},   {26, 33},   {27, 30},   {28, 36},
      {30, 0},    {31, 1},    {32, 2},    {33, 3},    {34, 5},    {35, 4},    {36, 38},
      {37, 40},   {38, 37},   {39, 41},   {40, 39},   {41, 10},   {43, 42},   {44, 6},
      {45, 7},    {46, 8},    {47, 9},    {48, 11},   {49, 45},   {50, 46},   {51, 43},
      {52, 47},   {53, 44},   {55, 67},   {57, 49},   {59, 122},  {60, 120},  {61, 99},
      {62, 118},  {63, 96},   {64, 97},   {65, 98},   {66, 100},  {67, 101},  {68, 109},
      {69, 71},   {71, 89},   {72, 91},   {73, 92},   {74, 78},   {75, 86},   {76, 87},
      {77, 88},   {78, 69},   {79, 83},   {80, 84},   {81, 85},   {82, 82},   {83, 65},
      {86, 50},   {87, 103},  {88, 111},  {96, 76},   {98, 75},   {102, 115}, {103, 126},
      {104, 116}, {105, 123}, {106, 124}, {107, 119}, {108, 125}, {109, 121}, {110, 114},
      {111, 117}, {117, 81},  {138, 114},
  };
  for (const auto& [evdev, number] : pairs) numbers[evdev] = number;
  return numbers;
}

constexpr std::array<Int, KeyNumberCount> EvdevKeyNumbers = evdevKeyNumbers();

constexpr std::pair<int, Int> QtKeyNumbers[] = {
    {Qt::Key_A, 0},          {Qt::Key_S, 1},          {Qt::Key_D, 2},
    {Qt::Key_F, 3},          {Qt::Key_H, 4},          {Qt::Key_G, 5},
    {Qt::Key_Z, 6},          {Qt::Key_X, 7},          {Qt::Key_C, 8},
    {Qt::Key_V, 9},          {Qt::Key_B, 11},         {Qt::Key_Q, 12},
    {Qt::Key_W, 13},         {Qt::Key_E, 14},         {Qt::Key_R, 15},
    {Qt::Key_Y, 16},         {Qt::Key_T, 17},         {Qt::Key_1, 18},
    {Qt::Key_2, 19},         {Qt::Key_3, 20},         {Qt::Key_4, 21},
    {Qt::Key_6, 22},         {Qt::Key_5, 23},         {Qt::Key_Equal, 24},
    {Qt::Key_9, 25},         {Qt::Key_7, 26},         {Qt::Key_Minus, 27},
    {Qt::Key_8, 28},         {Qt::Key_0, 29},         {Qt::Key_BracketRight, 30},
    {Qt::Key_O, 31},         {Qt::Key_U, 32},         {Qt::Key_BracketLeft, 33},
    {Qt::Key_I, 34},         {Qt::Key_P, 35},         {Qt::Key_Return, 36},
    {Qt::Key_L, 37},         {Qt::Key_J, 38},         {Qt::Key_Apostrophe, 39},
    {Qt::Key_K, 40},         {Qt::Key_Semicolon, 41}, {Qt::Key_Backslash, 42},
    {Qt::Key_Comma, 43},     {Qt::Key_Slash, 44},     {Qt::Key_N, 45},
    {Qt::Key_M, 46},         {Qt::Key_Period, 47},    {Qt::Key_Tab, 48},
    {Qt::Key_Backtab, 48},   {Qt::Key_Space, 49},     {Qt::Key_QuoteLeft, 50},
    {Qt::Key_Backspace, 51}, {Qt::Key_Escape, 53},    {Qt::Key_F5, 96},
    {Qt::Key_F6, 97},        {Qt::Key_F7, 98},        {Qt::Key_F3, 99},
    {Qt::Key_F8, 100},       {Qt::Key_F9, 101},       {Qt::Key_F11, 103},
    {Qt::Key_F10, 109},      {Qt::Key_F12, 111},      {Qt::Key_Help, 114},
    {Qt::Key_Insert, 114},   {Qt::Key_Home, 115},     {Qt::Key_PageUp, 116},
    {Qt::Key_Delete, 117},   {Qt::Key_F4, 118},       {Qt::Key_End, 119},
    {Qt::Key_F2, 120},       {Qt::Key_PageDown, 121}, {Qt::Key_F1, 122},
    {Qt::Key_Left, 123},     {Qt::Key_Right, 124},    {Qt::Key_Down, 125},
    {Qt::Key_Up, 126},       {Qt::Key_Enter, 76},     {Qt::Key_Clear, 71},
};

constexpr std::pair<int, Int> QtKeypadKeyNumbers[] = {
    {Qt::Key_Period, 65}, {Qt::Key_Asterisk, 67}, {Qt::Key_Plus, 69},     {Qt::Key_Clear, 71},
    {Qt::Key_Slash, 75},  {Qt::Key_Enter, 76},    {Qt::Key_Minus, 78},    {Qt::Key_Equal, 81},
    {Qt::Key_0, 82},      {Qt::Key_1, 83},        {Qt::Key_2, 84},        {Qt::Key_3, 85},
    {Qt::Key_4, 86},      {Qt::Key_5, 87},        {Qt::Key_6, 88},        {Qt::Key_7, 89},
    {Qt::Key_8, 91},      {Qt::Key_9, 92},        {Qt::Key_Comma, 65},    {Qt::Key_Home, 89},
    {Qt::Key_Up, 91},     {Qt::Key_PageUp, 92},   {Qt::Key_Left, 86},     {Qt::Key_Right, 88},
    {Qt::Key_End, 83},    {Qt::Key_Down, 84},     {Qt::Key_PageDown, 85}, {Qt::Key_Insert, 82},
    {Qt::Key_Delete, 65},
};

// The characters that keys without text stand for: the function keys from U+F704 (F1), the
// cursor and paging keys their own private-use characters.
constexpr std::pair<int, Int> SpecialKeyCharacters[] = {
    {Qt::Key_Up, KeyCharacter::Up},         {Qt::Key_Down, KeyCharacter::Down},
    {Qt::Key_Left, KeyCharacter::Left},     {Qt::Key_Right, KeyCharacter::Right},
    {Qt::Key_Insert, KeyCharacter::Insert}, {Qt::Key_Delete, KeyCharacter::ForwardDelete},
    {Qt::Key_Home, KeyCharacter::Home},     {Qt::Key_End, KeyCharacter::End},
    {Qt::Key_PageUp, KeyCharacter::PageUp}, {Qt::Key_PageDown, KeyCharacter::PageDown},
    {Qt::Key_Clear, KeyCharacter::Clear},   {Qt::Key_Help, KeyCharacter::Help},
};

template <std::size_t N>
Int lookUp(const std::pair<int, Int> (&table)[N], int key, Int missing) {
  for (const auto& [tableKey, value] : table) {
    if (tableKey == key) return value;
  }
  return missing;
}

bool isModifierKey(int key) {
  switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
      return true;
    default:
      return false;
  }
}

bool isFunctionKey(int key) {
  return key >= Qt::Key_F1 && key <= Qt::Key_F35;
}

bool isArrowKey(int key) {
  return key >= Qt::Key_Left && key <= Qt::Key_Down;
}

std::string utf8OfScalar(Int scalar) {
  return QString(QChar(static_cast<char16_t>(scalar))).toStdString();
}

std::string charactersOf(const QKeyEvent& event) {
  const int key = event.key();
  if (isFunctionKey(key)) return utf8OfScalar(KeyCharacter::F1 + (key - Qt::Key_F1));
  if (const Int special = lookUp(SpecialKeyCharacters, key, 0); special != 0) {
    return utf8OfScalar(special);
  }
  // The backspace key delivers DEL, shift-tab the "end of medium" control, keypad enter ETX.
  if (key == Qt::Key_Backspace) return "\x7F";
  if (key == Qt::Key_Backtab) return "\x19";
  if (key == Qt::Key_Enter) return "\x03";
  return event.text().toStdString();
}

}  // namespace

Int keyNumberOfScanCode(quint32 scanCode) {
  if (scanCode < X11KeyCodeOffset || scanCode - X11KeyCodeOffset >= KeyNumberCount) {
    return Key::Unknown;
  }
  return EvdevKeyNumbers[scanCode - X11KeyCodeOffset];
}

Int keyNumberOfQtKey(int key, bool keypad) {
  if (keypad) {
    if (const Int number = lookUp(QtKeypadKeyNumbers, key, Key::Unknown); number != Key::Unknown) {
      return number;
    }
  }
  return lookUp(QtKeyNumbers, key, Key::Unknown);
}

Int modifierFlagsOf(Qt::KeyboardModifiers modifiers) {
  Int flags = 0;
  if (modifiers & Qt::ShiftModifier) flags |= ShiftFlag;
  if (modifiers & Qt::ControlModifier) flags |= ControlFlag;
  if (modifiers & (Qt::AltModifier | Qt::GroupSwitchModifier)) flags |= OptionFlag;
  if (modifiers & Qt::MetaModifier) flags |= CommandFlag;
  if (modifiers & Qt::KeypadModifier) flags |= NumericPadFlag;
  return flags;
}

KeyPress translateKey(const QKeyEvent& event) {
  KeyPress press;
  const int key = event.key();
  press.Flags = modifierFlagsOf(event.modifiers());
  press.ModifierKey = isModifierKey(key);
  if (press.ModifierKey) return press;
  // Function, cursor and paging keys carry the function flag, the arrows also the numeric
  // pad flag, as the runtime's keyboards always reported them.
  if (isFunctionKey(key) || lookUp(SpecialKeyCharacters, key, 0) != 0) press.Flags |= FunctionFlag;
  if (isArrowKey(key)) press.Flags |= NumericPadFlag;
  press.KeyCode = keyNumberOfScanCode(event.nativeScanCode());
  if (press.KeyCode == Key::Unknown) {
    press.KeyCode = keyNumberOfQtKey(key, event.modifiers() & Qt::KeypadModifier);
  }
  press.Characters = charactersOf(event);
  return press;
}

}  // namespace rvtools::shell
