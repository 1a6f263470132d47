// SPDX-License-Identifier: MIT
// Keyboard events: the views' key handler, which turns a key press into a key event (Kind 1)
// on the shared key queue, acts on the few keys that switch output redirection, and keeps the
// global key and modifier state and which keys are held; and the program-side operations that
// wait for keys, t_GetKey and t_GetYesNo, or take them without waiting, t_InKey and t_KeyDown.
// Depends on the runtime globals, the host's clock, text output (t_Print, t_RedirectOutput)
// and the cursor display (t_CursorOn, t_CursorOff).
#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "runtime/clock.hpp"
#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/input.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

constexpr Int LastLatin1Code = 255;
constexpr Int KeyWaitStepNanoseconds = 10000000;
constexpr Int KeyCodesWithTableRows = 127;  // key codes from here on skip the table

// What the key tables make of one key press.
struct KeyMeaning {
  enum class Kind { Queue, NoEvent, GeneralRule } kind = Kind::GeneralRule;
  Int value = 0;  // the event's Value when queued
  bool cursorKey = false;
  bool functionKey = false;
  Int scalar = 0;  // the character that the general rule works on
};

KeyMeaning queued(Int value, bool cursorKey = false) {
  return {KeyMeaning::Kind::Queue, value, cursorKey, false, 0};
}

KeyMeaning functionKeyPressed(Int value) {
  return {KeyMeaning::Kind::Queue, value, false, true, 0};
}

KeyMeaning generalRule(Int scalar) {
  return {KeyMeaning::Kind::GeneralRule, 0, false, false, scalar};
}

KeyMeaning noEvent() {
  return {KeyMeaning::Kind::NoEvent, 0, false, false, 0};
}

// The cursor, paging and editing keys: each delivers a control code that text output and the
// line editor read as a movement.
struct CursorKey {
  Int keyCode;
  Int value;
  bool cursorKey;
};

constexpr std::array<CursorKey, 10> CursorKeys{{
    {Key::Home, KeyValue::Home, true},
    {Key::PageUp, KeyValue::PageUp, true},
    {Key::ForwardDelete, KeyValue::ForwardDelete, false},
    {Key::End, KeyValue::End, true},
    {Key::PageDown, KeyValue::PageDown, true},
    {Key::Left, KeyValue::Left, true},
    {Key::Right, KeyValue::Right, true},
    {Key::Down, KeyValue::Down, true},
    {Key::Up, KeyValue::Up, true},
    {Key::KeypadEnter, KeyValue::Return, false},
}};

// Option characters that lie beyond Latin-1: on their own key they become the font's symbol
// for that character.
struct OptionCharacter {
  Int keyCode;
  Int scalar;
  Int code;
};

constexpr std::array<OptionCharacter, 28> OptionCharacters{{
    {Key::A, 0xE5, 0xB0},           {Key::S, 0x201A, 0xA8},
    {Key::D, 0x2202, 0xAD},         {Key::F, 0x192, 0x82},
    {Key::H, 0xAA, 0x83},           {Key::X, 0x2248, 0x84},
    {Key::V, 0x221A, 0xFD},         {Key::B, 0x222B, 0xDE},
    {Key::W, 0x2211, 0xDD},         {Key::E, 0x20AC, 0xA4},
    {Key::Y, 0x3A9, 0x80},          {Key::T, 0x2020, 0xBD},
    {Key::Digit2, 0x201C, 0xA3},    {Key::Minus, 0xBF, 0xA6},
    {Key::Digit0, 0x2260, 0xAC},    {Key::LeftBracket, 0x2022, 0xB8},
    {Key::I, 0x2044, 0x81},         {Key::P, 0x3C0, 0xF0},
    {Key::P, 0x220F, 0xD0},         {Key::J, 0xBA, 0xB7},
    {Key::K, 0x2206, 0xFE},         {Key::Semicolon, 0x153, 0xBE},
    {Key::Backslash, 0x2018, 0xB4}, {Key::Comma, 0x221E, 0xFF},
    {Key::Slash, 0x2013, 0x9A},     {Key::Period, 0x2026, 0xBF},
    {Key::Grave, 0x2264, 0xC5},     {Key::Grave, 0x2265, 0xC6},
}};

// Option with keypad 0 to 6.
constexpr std::array<Int, 7> OptionKeypadCodes{0xD8, 0xB9, 0xB2, 0xB3, 0xAA, 0xD7, 0xBA};

bool flagSet(Int flags, Int flag) {
  return (flags & flag) != 0;
}

std::optional<KeyMeaning> cursorKeyMeaning(Int keyCode) {
  const auto row = std::find_if(CursorKeys.begin(), CursorKeys.end(),
                                [&](const CursorKey& key) { return key.keyCode == keyCode; });
  if (row == CursorKeys.end()) return std::nullopt;
  return queued(row->value, row->cursorKey);
}

std::optional<KeyMeaning> optionCharacterMeaning(Int keyCode, Int scalar) {
  const auto row = std::find_if(OptionCharacters.begin(), OptionCharacters.end(),
                                [&](const OptionCharacter& character) {
                                  return character.keyCode == keyCode && character.scalar == scalar;
                                });
  if (row == OptionCharacters.end()) return std::nullopt;
  return queued(row->code);
}

// Dead keys deliver no characters; these keys still give the accent they carry.
std::optional<KeyMeaning> deadKeyMeaning(Int keyCode, Int flags) {
  switch (keyCode) {
    case Key::Section:
      return queued(0x5E);
    case Key::Equal:
      return queued(flagSet(flags, ShiftFlag) ? 0x60 : 0xB4);
    case Key::U:
      return queued(0xAF);
    case Key::N:
      if (flagSet(flags, OptionFlag)) return queued(0x7E);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

// Keypad 7, 8 and 9: with control they switch the window's output to nowhere, standard output
// and the window; with option they type three Latin-1 characters.
std::optional<KeyMeaning> keypadSevenToNineMeaning(UInt8 window, Int keyCode, Int flags) {
  const bool option = flagSet(flags, OptionFlag);
  if (!option && flagSet(flags, ControlFlag)) {
    t_RedirectOutput(window, keyCode == Key::Keypad7 ? 0 : keyCode == Key::Keypad8 ? 2 : 1);
    return noEvent();
  }
  if (option) {
    return generalRule(keyCode == Key::Keypad7 ? 0xE5 : keyCode == Key::Keypad8 ? 0xE6 : 0xBC);
  }
  return std::nullopt;
}

// The row of the key-code table for a key below 127, or nothing when the key has no row or its
// condition fails.
std::optional<KeyMeaning> tableMeaning(UInt8 window, Int keyCode, Int scalar, bool empty,
                                       Int flags) {
  if (auto meaning = cursorKeyMeaning(keyCode)) return meaning;
  if (keyCode == Key::Tab) {
    if (scalar == 0x19) return queued(KeyValue::ShiftTab);
    return std::nullopt;
  }
  if (keyCode == Key::L) {
    if (scalar == 0x0C && flagSet(flags, OptionFlag)) return queued(0);
    return std::nullopt;
  }
  if (keyCode == Key::Backspace) return queued(scalar);
  // The clear key has no code of its own.
  if (keyCode == Key::KeypadClear) return noEvent();
  if (keyCode >= Key::Keypad0 && keyCode <= Key::Keypad6) {
    if (flagSet(flags, OptionFlag)) return queued(OptionKeypadCodes[keyCode - Key::Keypad0]);
    return std::nullopt;
  }
  if (keyCode == Key::Keypad7 || keyCode == Key::Keypad8 || keyCode == Key::Keypad9) {
    return keypadSevenToNineMeaning(window, keyCode, flags);
  }
  if (empty) return deadKeyMeaning(keyCode, flags);
  return optionCharacterMeaning(keyCode, scalar);
}

// Latin-1 characters pass as they are, function keys become 129 and up, the rest is dropped.
KeyMeaning generalRuleMeaning(Int scalar) {
  if (scalar >= 0 && scalar <= LastLatin1Code) return queued(scalar);
  if (scalar >= KeyCharacter::F1) {
    return functionKeyPressed(scalar - FunctionKeyValueOffset);
  }
  return noEvent();
}

void setModifierGlobals(Int flags) {
  CapsLockDown = flagSet(flags, CapsLockFlag);
  ShiftDown = flagSet(flags, ShiftFlag);
  ControlDown = flagSet(flags, ControlFlag);
  OptionDown = flagSet(flags, OptionFlag);
  CommandDown = flagSet(flags, CommandFlag);
  FnDown = flagSet(flags, FunctionFlag);
}

void queueKeyEvent(UInt8 window, Int keyCode, const std::string& characters, Int flags,
                   const KeyMeaning& meaning) {
  t_Event event;
  event.Kind = KeyEventKind;
  event.Index = keyCode;
  event.Description = characters;
  event.Value = meaning.value;
  event.Mods = (flags >> 16) & 0xFFFF;
  event.Window = window;
  event.Time = absoluteMilliseconds();
  event.CapsLockPressed = flagSet(flags, CapsLockFlag);
  event.ShiftPressed = flagSet(flags, ShiftFlag);
  event.ControlPressed = flagSet(flags, ControlFlag);
  event.OptionPressed = flagSet(flags, OptionFlag);
  event.CommandPressed = flagSet(flags, CommandFlag);
  event.NumericPadPressed = flagSet(flags, NumericPadFlag);
  event.HelpPressed = flagSet(flags, HelpFlag);
  event.FnPressed = flagSet(flags, FunctionFlag);
  event.CursorKeyPressed = meaning.cursorKey;
  event.FunctionKeyPressed = meaning.functionKey;
  EventQueue.append(std::move(event));
}

void handleKeyDown(UInt8 window, Int keyCode, const std::string& characters, Int flags) {
  if (!MemoryInitialized) return;
  if (window >= GraphicWindowCount || !Windows[window].Initialized) {
    logLine("viewKeyDown: Graphic window (", window, ") not initialized.");
    return;
  }
  if (Windows[window].IgnoreEvents) return;
  const std::vector<char32_t> scalars = scalarsOf(characters);
  const Int scalar = scalars.empty() ? 0 : static_cast<Int>(scalars.front());
  setModifierGlobals(flags);

  std::optional<KeyMeaning> meaning;
  if (keyCode >= 0 && keyCode < KeyCodesWithTableRows) {
    meaning = tableMeaning(window, keyCode, scalar, scalars.empty(), flags);
  }
  if (!meaning) meaning = generalRule(scalar);
  if (meaning->kind == KeyMeaning::Kind::GeneralRule) meaning = generalRuleMeaning(meaning->scalar);
  if (meaning->kind == KeyMeaning::Kind::Queue) {
    queueKeyEvent(window, keyCode, characters, flags, *meaning);
  }
}

// The character of a key event's value as t_GetKey returns it: a value that is no Unicode
// scalar becomes 0.
char32_t characterOfValue(Int value) {
  return isScalarValue(value) ? static_cast<char32_t>(value) : 0;
}

// The keys held down, by key number. The interface thread writes while the program reads.
constexpr Int HeldKeyCount = 128;

std::array<std::atomic<bool>, HeldKeyCount>& heldKeys() {
  static auto* keys = new std::array<std::atomic<bool>, HeldKeyCount>{};
  return *keys;
}

bool isHeldKeyNumber(Int keyNumber) {
  return keyNumber >= 0 && keyNumber < HeldKeyCount;
}

void setHeld(Int keyNumber, bool held) {
  if (isHeldKeyNumber(keyNumber)) heldKeys()[keyNumber].store(held, std::memory_order_relaxed);
}

// The next queued event; while none is queued the window's cursor shows.
t_Event nextEvent(UInt8 window) {
  for (;;) {
    if (!EventPending) {
      t_CursorOn(window);
      while (!EventPending) sleepFor(0, KeyWaitStepNanoseconds);
      t_CursorOff(window);
    }
    if (std::optional<t_Event> event = EventQueue.takeFirst()) return *event;
  }
}

// Upper case of ASCII and Latin-1 letters; every other character stays.
char32_t upperCased(char32_t c) {
  const bool asciiLower = c >= U'a' && c <= U'z';
  const bool latin1Lower = c >= 0xE0 && c <= 0xFE && c != 0xF7;
  return asciiLower || latin1Lower ? c - 32 : c;
}

// The keys of the printable ASCII characters on a US keyboard, from 32 (blank) to 126 (~), and
// whether shift is held for them.
struct TypedKey {
  Int keyNumber;
  bool shift;
};

constexpr std::array<TypedKey, 95> AsciiKeys = [] {
  std::array<TypedKey, 95> keys{};
  constexpr Int Letters[26] = {Key::A, Key::B, Key::C, Key::D, Key::E, Key::F, Key::G,
                               Key::H, Key::I, Key::J, Key::K, Key::L, Key::M, Key::N,
                               Key::O, Key::P, Key::Q, Key::R, Key::S, Key::T, Key::U,
                               Key::V, Key::W, Key::X, Key::Y, Key::Z};
  constexpr Int Digits[10] = {Key::Digit0, Key::Digit1, Key::Digit2, Key::Digit3, Key::Digit4,
                              Key::Digit5, Key::Digit6, Key::Digit7, Key::Digit8, Key::Digit9};
  constexpr std::pair<char, TypedKey> Punctuation[] = {
      {' ', {Key::Space, false}},      {'!', {Key::Digit1, true}},
      {'"', {Key::Quote, true}},       {'#', {Key::Digit3, true}},
      {'$', {Key::Digit4, true}},      {'%', {Key::Digit5, true}},
      {'&', {Key::Digit7, true}},      {'\'', {Key::Quote, false}},
      {'(', {Key::Digit9, true}},      {')', {Key::Digit0, true}},
      {'*', {Key::Digit8, true}},      {'+', {Key::Equal, true}},
      {',', {Key::Comma, false}},      {'-', {Key::Minus, false}},
      {'.', {Key::Period, false}},     {'/', {Key::Slash, false}},
      {':', {Key::Semicolon, true}},   {';', {Key::Semicolon, false}},
      {'<', {Key::Comma, true}},       {'=', {Key::Equal, false}},
      {'>', {Key::Period, true}},      {'?', {Key::Slash, true}},
      {'@', {Key::Digit2, true}},      {'[', {Key::LeftBracket, false}},
      {'\\', {Key::Backslash, false}}, {']', {Key::RightBracket, false}},
      {'^', {Key::Digit6, true}},      {'_', {Key::Minus, true}},
      {'`', {Key::Grave, false}},      {'{', {Key::LeftBracket, true}},
      {'|', {Key::Backslash, true}},   {'}', {Key::RightBracket, true}},
      {'~', {Key::Grave, true}},
  };
  for (int i = 0; i < 26; ++i) {
    keys['a' + i - 32] = {Letters[i], false};
    keys['A' + i - 32] = {Letters[i], true};
  }
  for (int i = 0; i < 10; ++i) keys['0' + i - 32] = {Digits[i], false};
  for (const auto& [character, key] : Punctuation) keys[character - 32] = key;
  return keys;
}();

// The control characters that have keys of their own; the others are typed with control.
std::optional<KeyStroke> controlKeyStroke(char32_t character) {
  switch (character) {
    case U'\r':
    case U'\n':
      return KeyStroke{Key::Return, "\r", 0};
    case U'\t':
      return KeyStroke{Key::Tab, "\t", 0};
    case 0x1B:
      return KeyStroke{Key::Escape, "\x1B", 0};
    case 0x7F:
      return KeyStroke{Key::Backspace, "\x7F", 0};
    default:
      break;
  }
  const std::string typed(1, static_cast<char>(character));
  if (character == 0) return KeyStroke{Key::Space, typed, ControlFlag};
  if (character <= 26)
    return KeyStroke{AsciiKeys['a' + character - 1 - 32].keyNumber, typed, ControlFlag};
  constexpr Int Keys28To31[4] = {Key::Backslash, Key::RightBracket, Key::Digit6, Key::Minus};
  if (character >= 28 && character <= 31) {
    return KeyStroke{Keys28To31[character - 28], typed,
                     ControlFlag | (character >= 30 ? ShiftFlag : 0)};
  }
  return std::nullopt;
}

Int yesNoAnswer(char32_t key, Int defaultAnswer) {
  switch (key) {
    case KeyValue::Return:
    case U' ':
      return defaultAnswer;
    case KeyValue::Escape:
      return -1;
    case U'J':
    case U'Y':
      return 1;
    case U'N':
      return 0;
    default:
      return -2;
  }
}

}  // namespace

// The key counts as held before its event is queued, so that a program that takes the event
// finds the key held too.
void viewKeyDown(UInt8 window, Int keyCode, const std::string& characters, Int modifierFlags) {
  setHeld(keyCode, true);
  handleKeyDown(window, keyCode, characters, modifierFlags);
  KeyIsDown = true;
}

void viewKeyUp() {
  KeyIsDown = false;
}

void viewKeyReleased(Int keyNumber) {
  setHeld(keyNumber, false);
}

void viewFlagsChanged(Int modifierFlags) {
  setModifierGlobals(modifierFlags);
}

std::string t_GetKey(UInt8 window) {
  for (;;) {
    const t_Event event = nextEvent(window);
    LastEvent = event;
    if (event.Value < 0) continue;
    return utf8Of(characterOfValue(event.Value));
  }
}

// Events without a value are passed over, as t_GetKey passes them; taking them all is bounded by
// the queue's length.
Int t_InKey(UInt8) {
  while (std::optional<t_Event> event = EventQueue.takeFirst()) {
    LastEvent = *event;
    if (event->Value >= 0) return characterOfValue(event->Value);
  }
  return -1;
}

bool t_KeyDown(Int keyNumber) {
  return isHeldKeyNumber(keyNumber) && heldKeys()[keyNumber].load(std::memory_order_relaxed);
}

Int t_GetYesNo(UInt8 window, Int defaultAnswer, bool echo) {
  if (echo) t_Print(window, std::string(" \b"));
  const std::vector<char32_t> key = scalarsOf(t_GetKey(window));
  const char32_t c = key.empty() ? 0 : upperCased(key.front());
  const Int answer = yesNoAnswer(c, defaultAnswer);
  if (echo) t_Print(window, std::string(answer == 1 ? "J" : "N"));
  return answer;
}

// ---------------------------------------------------------------------------------------------
// Typing a character

Int functionKeyNumber(int n) {
  constexpr Int Numbers[12] = {Key::F1, Key::F2, Key::F3, Key::F4,  Key::F5,  Key::F6,
                               Key::F7, Key::F8, Key::F9, Key::F10, Key::F11, Key::F12};
  return n >= 1 && n <= 12 ? Numbers[n - 1] : Key::Unknown;
}

std::optional<KeyStroke> keyStrokeOfKeyWithoutText(Int keyNumber) {
  constexpr Int ArrowFlags = FunctionFlag | NumericPadFlag;
  constexpr std::tuple<Int, char32_t, Int> Keys[] = {
      {Key::Up, KeyCharacter::Up, ArrowFlags},
      {Key::Down, KeyCharacter::Down, ArrowFlags},
      {Key::Left, KeyCharacter::Left, ArrowFlags},
      {Key::Right, KeyCharacter::Right, ArrowFlags},
      {Key::Home, KeyCharacter::Home, FunctionFlag},
      {Key::End, KeyCharacter::End, FunctionFlag},
      {Key::PageUp, KeyCharacter::PageUp, FunctionFlag},
      {Key::PageDown, KeyCharacter::PageDown, FunctionFlag},
      {Key::Insert, KeyCharacter::Insert, FunctionFlag},
      {Key::ForwardDelete, KeyCharacter::ForwardDelete, FunctionFlag},
      {Key::KeypadClear, KeyCharacter::Clear, ArrowFlags},
  };
  for (const auto& [number, character, flags] : Keys) {
    if (number == keyNumber) return KeyStroke{keyNumber, utf8Of(character), flags};
  }
  for (int n = 1; n <= 12; ++n) {
    if (functionKeyNumber(n) == keyNumber) {
      return KeyStroke{keyNumber, utf8Of(KeyCharacter::F1 + n - 1), FunctionFlag};
    }
  }
  return std::nullopt;
}

std::optional<KeyStroke> keyStrokeOfCharacter(char32_t character) {
  if (character < 32 || character == 0x7F) return controlKeyStroke(character);
  if (character < 0x7F) {
    const TypedKey key = AsciiKeys[character - 32];
    return KeyStroke{key.keyNumber, utf8Of(character), key.shift ? ShiftFlag : 0};
  }
  if (character >= 0xA0 && character <= LastLatin1Code) {
    return KeyStroke{Key::Unknown, utf8Of(character), 0};
  }
  for (const OptionCharacter& option : OptionCharacters) {
    if (option.scalar == static_cast<Int>(character) && option.scalar > LastLatin1Code) {
      return KeyStroke{option.keyCode, utf8Of(character), OptionFlag};
    }
  }
  return std::nullopt;
}

// A carriage return followed by a line feed is one Return, as a text file from another system
// means it.
void t_PasteAsKeys() {
  const UInt8 front = host().frontWindow();
  const UInt8 window = front < GraphicWindowCount ? front : DefaultWindow.load();
  if (window >= GraphicWindowCount || !MemoryInitialized || !Windows[window].Initialized) {
    logLine("t_PasteAsKeys: Window #", window, " not initialized.");
    return;
  }
  const std::vector<char32_t> text = scalarsOf(host().pasteboardText());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t character = text[i];
    if (character == U'\r' && i + 1 < text.size() && text[i + 1] == U'\n') continue;
    const bool typed =
        character >= 32 || character == U'\r' || character == U'\n' || character == U'\t';
    if (!typed || character == 0x7F) continue;
    if (const std::optional<KeyStroke> stroke = keyStrokeOfCharacter(character)) {
      handleKeyDown(window, stroke->KeyNumber, stroke->Characters, stroke->Flags);
    }
  }
}

}  // namespace rvtools
