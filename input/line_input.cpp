// SPDX-License-Identifier: MIT
// The line input editor: t_InputForm prints a prompt and a default line and feeds keys from the
// key queue into t_InputEdit until Return or Escape; t_InputEdit moves the edit cursor, deletes,
// clears, copies and enters codes; t_InputInsert filters a character by the input mode and the
// length limit and inserts it. The line and its place on the screen live in the window record.
// Depends on the runtime globals and entry checks, text output and the cursor moves, t_GetKey
// and the host's pasteboard.
#include <algorithm>
#include <string>
#include <vector>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/input.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

using Scalars = std::vector<char32_t>;

// Input modes with a filter of their own.
constexpr Int AnyCodeEntryMode = 1;
constexpr Int IntegerMode = 2;
constexpr Int RealNumberMode = 3;

// Display mode in which the line is printed: control characters show as letters in colour 1.
constexpr Int ControlsVisibleMode = 4;
constexpr Int NormalMode = 0;
constexpr int CodeEntryDigits = 3;

std::string joined(const Scalars& scalars) {
  std::string text;
  for (char32_t scalar : scalars) text += utf8Of(scalar);
  return text;
}

Int countOf(const Scalars& scalars) {
  return static_cast<Int>(scalars.size());
}

bool isDigit(char32_t c) {
  return c >= U'0' && c <= U'9';
}

// Prints text at the cursor in the display mode that shows control characters.
void printVisibly(UInt8 window, t_Window& record, const std::string& text) {
  record.TextDisplayMode = ControlsVisibleMode;
  t_Print(window, text);
  record.TextDisplayMode = NormalMode;
}

// Prints the line from its start, followed by `trailingBlanks` blanks that wipe cells the line
// no longer covers.
void redrawLine(UInt8 window, t_Window& record, Int trailingBlanks = 0) {
  record.TextHpos = record.InputHpos;
  record.TextVpos = record.InputVpos;
  printVisibly(window, record, record.InputString);
  t_PrintSpc(window, trailingBlanks);
}

// Empties the line and blanks the cells it covered.
void clearLine(UInt8 window, t_Window& record) {
  const Int oldCount = characterCount(record.InputString);
  record.InputString.clear();
  record.InputCursorPos = 0;
  record.TextHpos = record.InputHpos;
  t_PrintSpc(window, oldCount);
}

// Removes the character with the 0-based index `index`, if the line has one there, and
// redraws the line.
void deleteCharacter(UInt8 window, t_Window& record, Int index) {
  Scalars line = scalarsOf(record.InputString);
  if (index >= 0 && index < countOf(line)) line.erase(line.begin() + index);
  record.InputString = joined(line);
  redrawLine(window, record, 1);
}

// Word right stops on the blank after a word (or at the end); word left stops on the first
// character of a word (or at the start). Each moves at least one character.
Int wordRightPosition(const Scalars& line, Int position) {
  const Int count = countOf(line);
  if (position >= count) return position;
  position = std::max<Int>(position, 0) + 1;
  while (position < count && line[position] != U' ') ++position;
  return position;
}

Int wordLeftPosition(const Scalars& line, Int position) {
  if (position <= 0) return position;
  position = std::min(position, countOf(line)) - 1;
  while (position > 0 && line[position - 1] != U' ') --position;
  return position;
}

// Up to three digit keys form a character code; the first other key ends the entry early and
// is used up by it.
void enterCharacterCode(UInt8 window, const t_Window& record) {
  Int code = 0;
  for (int digits = 0; digits < CodeEntryDigits; ++digits) {
    const Scalars key = scalarsOf(t_GetKey(window));
    if (key.empty() || !isDigit(key.front())) break;
    code = code * 10 + static_cast<Int>(key.front() - U'0');
  }
  const Int lowest = record.InputMode == AnyCodeEntryMode ? 1 : 32;
  if (code >= lowest && code <= 255) t_InputInsert(window, code);
}

void applyKey(UInt8 window, t_Window& record, Int key) {
  const Int position = record.InputCursorPos;
  switch (key) {
    case EditKey::Redraw:
      redrawLine(window, record);
      break;
    // Cursor up and page up go to the start of the line, cursor down and page down to its end.
    case EditKey::LineStart:
    case KeyValue::Home:
    case KeyValue::Up:
    case KeyValue::PageUp:
      record.InputCursorPos = 0;
      break;
    case KeyValue::PageDown:
    case KeyValue::End:
    case EditKey::LineEnd:
    case KeyValue::Down:
      record.InputCursorPos = characterCount(record.InputString);
      break;
    case EditKey::WordRight:
      record.InputCursorPos = wordRightPosition(scalarsOf(record.InputString), position);
      break;
    case KeyValue::ForwardDelete:
      deleteCharacter(window, record, position);
      break;
    case KeyValue::Left:
      record.InputCursorPos = saturatingSum(position, -1);
      break;
    case EditKey::Copy:
      host().setPasteboardText(record.InputString);
      break;
    case KeyValue::Return:
      record.InputFinished = true;
      break;
    case EditKey::WordLeft:
      record.InputCursorPos = wordLeftPosition(scalarsOf(record.InputString), position);
      break;
    case KeyValue::Right:
      record.InputCursorPos = saturatingSum(position, 1);
      break;
    case EditKey::Clear:
      clearLine(window, record);
      break;
    case KeyValue::Escape:
      clearLine(window, record);
      record.InputFinished = false;
      break;
    case EditKey::CodeEntry:
      enterCharacterCode(window, record);
      break;
    case KeyValue::Backspace:
      deleteCharacter(window, record, saturatingSum(position, -1));
      record.InputCursorPos = saturatingSum(position, -1);
      break;
    default:
      // The cursor was placed before the switch; that is all EditKey::PlaceCursor and the other
      // control codes do.
      if (key >= 32) t_InputInsert(window, key);
      break;
  }
}

// Integer mode: digits anywhere, a minus only as the first character and only once.
bool integerAccepts(const Scalars& line, Int position, Int code) {
  if (code == U'-') return position == 0 && std::find(line.begin(), line.end(), U'-') == line.end();
  return isDigit(static_cast<char32_t>(code));
}

// Real-number mode takes a character when the line with it is still the beginning of a
// number: an optional minus, digits with at most one decimal separator (a point or a comma),
// then optionally an e that follows at least one digit, a minus directly after the e, and
// digits. A separator after the e, a second e, a minus anywhere else and a digit in front of
// the leading minus are refused.
bool isRealNumberBeginning(const Scalars& line) {
  std::size_t at = 0;
  if (at < line.size() && line[at] == U'-') ++at;
  bool digitSeen = false;
  bool separatorSeen = false;
  for (; at < line.size() && line[at] != U'e'; ++at) {
    const char32_t c = line[at];
    if (isDigit(c)) {
      digitSeen = true;
    } else if ((c == U'.' || c == U',') && !separatorSeen) {
      separatorSeen = true;
    } else {
      return false;
    }
  }
  if (at == line.size()) return true;
  if (!digitSeen) return false;
  ++at;
  if (at < line.size() && line[at] == U'-') ++at;
  return std::all_of(line.begin() + static_cast<std::ptrdiff_t>(at), line.end(), isDigit);
}

// Integer and real-number modes filter; every other mode (0, 1, 4, ...) takes every character.
bool modeAccepts(Int mode, const Scalars& line, Int position, Int code) {
  if (mode == IntegerMode) return integerAccepts(line, position, code);
  if (mode == RealNumberMode) {
    Scalars candidate = line;
    candidate.insert(candidate.begin() + position, static_cast<char32_t>(code));
    return isRealNumberBeginning(candidate);
  }
  return true;
}

}  // namespace

std::string t_InputForm(UInt8 window, const std::string& prompt, const std::string& defaultText,
                        bool displayOnly, Int inputMode, Int maximumLength) {
  t_Window* record = checkedWindow("t_InputForm", window, Needs::TextMemory);
  if (!record) return {};
  printVisibly(window, *record, prompt);
  record->InputHpos = record->TextHpos;
  record->InputVpos = record->TextVpos;
  record->InputMode = inputMode;
  record->InputMaxCharacters = maximumLength;
  record->InputString = TextMiddle(defaultText, 1, maximumLength);
  record->InputFinished = false;
  record->InputCursorPos = characterCount(record->InputString);
  redrawLine(window, *record);
  // A display-only form leaves the cursor right after the line it showed.
  if (displayOnly) return record->InputString;

  Int key = 0;
  do {
    t_InputEdit(window, EditKey::PlaceCursor);
    const Scalars answer = scalarsOf(t_GetKey(window));
    key = answer.empty() ? 0 : static_cast<Int>(answer.front());
    t_InputEdit(window, key);
  } while (key != KeyValue::Return && key != KeyValue::Escape);
  t_Cr(window);
  return record->InputString;
}

void t_InputEdit(UInt8 window, Int key) {
  t_Window* record = checkedWindow("t_InputEdit", window, Needs::TextMemory);
  if (!record) return;
  record->TextVpos = record->InputVpos;
  record->TextHpos = saturatingSum(record->InputHpos, record->InputCursorPos);
  applyKey(window, *record, key);
  const Int count = characterCount(record->InputString);
  record->InputCursorPos = std::clamp<Int>(record->InputCursorPos, 0, count);
}

void t_InputInsert(UInt8 window, Int character) {
  t_Window* record = checkedWindow("t_InputInsert", window, Needs::TextMemory);
  if (!record) return;
  Scalars line = scalarsOf(record->InputString);
  const Int count = countOf(line);
  const bool room = saturatingSum(record->InputHpos, count) < record->TextLastColumn &&
                    count < record->InputMaxCharacters;
  // A value that is no Unicode scalar cannot become a character of the line.
  if (!room || !isScalarValue(character)) return;
  const Int position = std::clamp<Int>(record->InputCursorPos, 0, count);
  if (!modeAccepts(record->InputMode, line, position, character)) return;

  line.insert(line.begin() + position, static_cast<char32_t>(character));
  record->InputString = joined(line);
  record->TextVpos = record->InputVpos;
  record->TextHpos = saturatingSum(record->InputHpos, position);
  printVisibly(window, *record, joined(Scalars(line.begin() + position, line.end())));
  record->InputCursorPos = position + 1;
  record->TextHpos = saturatingSum(record->InputHpos, position + 1);
}

}  // namespace rvtools
