// SPDX-License-Identifier: MIT
// rvtools: keys as hosts deliver them and as programs receive them.
//
// A host reports each key press with three things: the key's number (by its physical position,
// in the numbering below, which follows the keyboard of the runtime's first home), the
// characters the key produced, and the modifier flags at bits 16 to 23. Keys without text
// deliver private-use characters: the function keys from U+F704 (F1) upward, the cursor and
// paging keys their own. The program receives a key event whose `Value` is a character code:
// printable keys their Latin-1 code, cursor and editing keys the control codes of `KeyValue`,
// function keys 129 (F1) upward.
#pragma once

#include <optional>
#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// ---------------------------------------------------------------------------------------------
// Modifier flags, bits 16 to 23 of what a host reports

inline constexpr Int CapsLockFlag = 1 << 16;
inline constexpr Int ShiftFlag = 1 << 17;
inline constexpr Int ControlFlag = 1 << 18;
inline constexpr Int OptionFlag = 1 << 19;   // Alt
inline constexpr Int CommandFlag = 1 << 20;  // Meta
inline constexpr Int NumericPadFlag = 1 << 21;
inline constexpr Int HelpFlag = 1 << 22;
inline constexpr Int FunctionFlag = 1 << 23;

// ---------------------------------------------------------------------------------------------
// Key numbers by physical position (US key names)

namespace Key {
inline constexpr Int A = 0, S = 1, D = 2, F = 3, H = 4, G = 5, Z = 6, X = 7, C = 8, V = 9;
inline constexpr Int Section = 10;  // the ISO key left of 1
inline constexpr Int B = 11, Q = 12, W = 13, E = 14, R = 15, Y = 16, T = 17;
inline constexpr Int Digit1 = 18, Digit2 = 19, Digit3 = 20, Digit4 = 21, Digit6 = 22;
inline constexpr Int Digit5 = 23, Equal = 24, Digit9 = 25, Digit7 = 26, Minus = 27;
inline constexpr Int Digit8 = 28, Digit0 = 29, RightBracket = 30, O = 31, U = 32;
inline constexpr Int LeftBracket = 33, I = 34, P = 35, Return = 36, L = 37, J = 38;
inline constexpr Int Quote = 39, K = 40, Semicolon = 41, Backslash = 42, Comma = 43;
inline constexpr Int Slash = 44, N = 45, M = 46, Period = 47, Tab = 48, Space = 49;
inline constexpr Int Grave = 50, Backspace = 51, Escape = 53;
inline constexpr Int KeypadDecimal = 65, KeypadMultiply = 67, KeypadPlus = 69;
inline constexpr Int KeypadClear = 71, KeypadDivide = 75, KeypadEnter = 76, KeypadMinus = 78;
inline constexpr Int KeypadEquals = 81, Keypad0 = 82, Keypad1 = 83, Keypad2 = 84, Keypad3 = 85;
inline constexpr Int Keypad4 = 86, Keypad5 = 87, Keypad6 = 88, Keypad7 = 89, Keypad8 = 91;
inline constexpr Int Keypad9 = 92;
inline constexpr Int F5 = 96, F6 = 97, F7 = 98, F3 = 99, F8 = 100, F9 = 101, F11 = 103;
inline constexpr Int F10 = 109, F12 = 111, Insert = 114, Home = 115, PageUp = 116;
inline constexpr Int ForwardDelete = 117, F4 = 118, End = 119, F2 = 120, PageDown = 121;
inline constexpr Int F1 = 122, Left = 123, Right = 124, Down = 125, Up = 126;
// A key the numbering does not know; such a key is read by its characters alone.
inline constexpr Int Unknown = 0xFFFF;
}  // namespace Key

// The key number of function key Fn, n from 1 to 12; Key::Unknown for any other n.
Int functionKeyNumber(int n);

// ---------------------------------------------------------------------------------------------
// The characters of keys without text

namespace KeyCharacter {
inline constexpr char32_t Up = 0xF700, Down = 0xF701, Left = 0xF702, Right = 0xF703;
inline constexpr char32_t F1 = 0xF704;  // F2 is 0xF705, and so on
inline constexpr char32_t Insert = 0xF727, ForwardDelete = 0xF728, Home = 0xF729;
inline constexpr char32_t End = 0xF72B, PageUp = 0xF72C, PageDown = 0xF72D;
inline constexpr char32_t Clear = 0xF739, Help = 0xF746;
}  // namespace KeyCharacter

// A function key's character becomes the value 129 (F1), 130 (F2), ...: character - offset.
inline constexpr Int FunctionKeyValueOffset = 0xF683;

// ---------------------------------------------------------------------------------------------
// What the program receives (`t_Event::Value`, the character of t_GetKey) for keys that type
// no character

namespace KeyValue {
inline constexpr Int Home = 2, PageDown = 3, End = 5, ForwardDelete = 7, Left = 8, Tab = 9;
inline constexpr Int Down = 10, Up = 11, Return = 13, PageUp = 18, ControlS = 19;
inline constexpr Int ShiftTab = 20, Right = 21, Escape = 27, Backspace = 127, F1 = 129;
}  // namespace KeyValue

// The further codes that the line editor (t_InputEdit) acts on, typed with control (control-A
// is 1): besides them it reads the KeyValue codes of the cursor and editing keys.
namespace EditKey {
inline constexpr Int Redraw = 0, LineStart = 1, WordRight = 4, LineEnd = 6, Copy = 12;
inline constexpr Int WordLeft = 19, Clear = 26, CodeEntry = 30, PlaceCursor = 31;
}  // namespace EditKey

// ---------------------------------------------------------------------------------------------
// Typing a character

// One key press as a host reports it.
struct KeyStroke {
  Int KeyNumber = Key::Unknown;
  std::string Characters;  // UTF-8
  Int Flags = 0;
};

// The key press of a key that types no text, as the desktop reports it: the arrows, Home, End,
// Page Up, Page Down, Insert, Forward Delete, the keypad's Clear and F1..F12, each with its
// private-use character and the function flag, the arrows and Clear also with the numeric-pad
// flag. Nothing for any other key number.
std::optional<KeyStroke> keyStrokeOfKeyWithoutText(Int keyNumber);

// The key press that types `character` on a US keyboard: letters, digits and punctuation on
// their keys (with shift where needed), Return for a carriage return or line feed, Tab,
// Backspace (DEL, 127) and Escape, control characters 1..26 as control with their letter,
// further Latin-1 characters by their character alone, and the keyboard's option characters
// (such as the euro sign) on the key that types them. Nothing for a character no key types.
std::optional<KeyStroke> keyStrokeOfCharacter(char32_t character);

}  // namespace rvtools
