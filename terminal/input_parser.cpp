// SPDX-License-Identifier: MIT
// The terminal's input as key strokes, mouse reports and pasted text. Characters go through
// keyStrokeOfCharacter, so that a typed "A" or control-S is the key press the desktop reports;
// keys without text follow the escape sequences of xterm and of the terminals that copy it
// (CSI and SS3 forms, "~" codes of the VT220, the Linux console's F1..F5), with the modifier
// parameter 1 + (Shift 1, Alt 2, Control 4, Meta 8). Terminals that speak the kitty keyboard
// protocol send every key as "CSI code ; modifiers:event ; text u" (or the xterm forms with
// the event added), which tells presses and repeats from releases. Depends on
// rvtools/keys.hpp only.
#include "terminal/input_parser.hpp"

#include <algorithm>

#include "rvtools/runtime.hpp"

namespace rvtools::terminal {
namespace {

constexpr char Escape = 0x1B;
constexpr std::string_view PasteEnd = "\x1B[201~";
// A control sequence longer than this is nothing a terminal sends; it is dropped.
constexpr std::size_t LongestSequence = 64;
// Larger numbers in a sequence are cut to this, one past the largest Unicode scalar, which no
// code reaches.
constexpr int LargestParameter = 0x110000;

// The event types of the kitty keyboard protocol; a press is the default.
constexpr int PressEvent = 1, ReleaseEvent = 3;
// That protocol's key codes for keys without text, in the private use area.
constexpr int FirstFunctionalCode = 57344, LastFunctionalCode = 63743;

// A key without text as the desktop reports it, with the modifiers of the sequence besides.
KeyStroke strokeOf(Int keyNumber, Int extraFlags) {
  KeyStroke stroke = *keyStrokeOfKeyWithoutText(keyNumber);
  stroke.Flags |= extraFlags;
  return stroke;
}

// The modifier parameter of xterm's sequences as modifier flags.
Int modifierFlags(int parameter) {
  if (parameter < 2) return 0;
  const int bits = parameter - 1;
  Int flags = 0;
  if (bits & 1) flags |= ShiftFlag;
  if (bits & 2) flags |= OptionFlag;
  if (bits & 4) flags |= ControlFlag;
  if (bits & 8) flags |= CommandFlag;
  return flags;
}

// The key of a sequence's final letter, in the CSI and the SS3 form alike.
std::optional<Int> letterKey(char letter) {
  switch (letter) {
    case 'A':
      return Key::Up;
    case 'B':
      return Key::Down;
    case 'C':
      return Key::Right;
    case 'D':
      return Key::Left;
    case 'H':
      return Key::Home;
    case 'F':
      return Key::End;
    case 'E':
      return Key::KeypadClear;
    case 'P':
    case 'Q':
    case 'R':
    case 'S':
      return functionKeyNumber(letter - 'P' + 1);
    default:
      return std::nullopt;
  }
}

// The key of a VT220 "~" sequence's first number.
std::optional<Int> tildeKey(int code) {
  switch (code) {
    case 1:
    case 7:
      return Key::Home;
    case 2:
      return Key::Insert;
    case 3:
      return Key::ForwardDelete;
    case 4:
    case 8:
      return Key::End;
    case 5:
      return Key::PageUp;
    case 6:
      return Key::PageDown;
    case 23:
      return functionKeyNumber(11);
    case 24:
      return functionKeyNumber(12);
    case 57427:  // the keypad's middle key, in the kitty keyboard protocol
      return Key::KeypadClear;
    default:
      break;
  }
  if (code >= 11 && code <= 15) return functionKeyNumber(code - 10);
  if (code >= 17 && code <= 21) return functionKeyNumber(code - 11);
  return std::nullopt;
}

// The keypad in application mode: SS3 with a letter per key.
std::optional<KeyStroke> keypadKey(char letter, Int extraFlags) {
  constexpr Int Digits[10] = {Key::Keypad0, Key::Keypad1, Key::Keypad2, Key::Keypad3, Key::Keypad4,
                              Key::Keypad5, Key::Keypad6, Key::Keypad7, Key::Keypad8, Key::Keypad9};
  const Int flags = NumericPadFlag | extraFlags;
  if (letter >= 'p' && letter <= 'y') {
    return KeyStroke{Digits[letter - 'p'], std::string(1, static_cast<char>('0' + letter - 'p')),
                     flags};
  }
  switch (letter) {
    case 'n':
      return KeyStroke{Key::KeypadDecimal, ".", flags};
    case 'M':
      return KeyStroke{Key::KeypadEnter, "\x03", flags};
    case 'k':
      return KeyStroke{Key::KeypadPlus, "+", flags};
    case 'm':
      return KeyStroke{Key::KeypadMinus, "-", flags};
    case 'j':
      return KeyStroke{Key::KeypadMultiply, "*", flags};
    case 'o':
      return KeyStroke{Key::KeypadDivide, "/", flags};
    case 'X':
      return KeyStroke{Key::KeypadEquals, "=", flags};
    default:
      return std::nullopt;
  }
}

// The kitty keyboard protocol's codes of the keypad, from 57399 (0) to 57415 (=), as the
// letters of the keypad's application-mode sequences; 57416, the separator, has none.
constexpr std::string_view KeypadCodeLetters = "pqrstuvwxynojmkMX";
constexpr int FirstKeypadCode = 57399;
// Then its cursor and editing keys, from 57417 (left) to 57426 (delete).
constexpr Int KeypadCursorKeys[] = {Key::Left,   Key::Right,        Key::Up,   Key::Down,
                                    Key::PageUp, Key::PageDown,     Key::Home, Key::End,
                                    Key::Insert, Key::ForwardDelete};
constexpr int FirstKeypadCursorCode = 57417;

// The character that control turns a key's character into, as terminals have long sent it:
// the letters and @ [ \ ] ^ _ become 0..31, the blank 0; nothing for the other characters.
std::optional<char32_t> controlCharacter(int character) {
  if (character == ' ') return 0;
  if (character >= 'a' && character <= 'z') return static_cast<char32_t>(character - 'a' + 1);
  if (character >= '@' && character <= '_') return static_cast<char32_t>(character - '@');
  return std::nullopt;
}

// The characters a key of the kitty protocol typed: the text the terminal sent with it, else
// the key's own character as control or shift makes it.
std::string characterTyped(int code, Int flags, const std::vector<int>& text) {
  std::string typed;
  for (const int scalar : text) {
    if (scalar > 0) typed += utf8Of(static_cast<char32_t>(scalar));
  }
  if (!typed.empty()) return typed;
  if ((flags & ControlFlag) != 0) {
    if (const std::optional<char32_t> control = controlCharacter(code)) return utf8Of(*control);
  }
  const bool shiftedLetter = (flags & ShiftFlag) != 0 && code >= 'a' && code <= 'z';
  return utf8Of(static_cast<char32_t>(shiftedLetter ? code - 32 : code));
}

// A key of the kitty protocol's "CSI code ; modifiers ; text u" form as the desktop reports it.
// The key number comes from the code, the key's unshifted character, and so is the same for the
// key's press and its release; the modifier keys and the keys the numbering lacks give nothing.
std::optional<KeyStroke> kittyKeyStroke(int code, Int flags, const std::vector<int>& text) {
  if (code >= FirstKeypadCode &&
      code < FirstKeypadCode + static_cast<int>(KeypadCodeLetters.size())) {
    return keypadKey(KeypadCodeLetters[static_cast<std::size_t>(code - FirstKeypadCode)], flags);
  }
  if (code >= FirstKeypadCursorCode && code < FirstKeypadCursorCode + 10) {
    return strokeOf(KeypadCursorKeys[code - FirstKeypadCursorCode], flags);
  }
  if ((code >= FirstFunctionalCode && code <= LastFunctionalCode) || code > 0x10FFFF) {
    return std::nullopt;
  }
  if (code == '\t' && (flags & ShiftFlag) != 0) return KeyStroke{Key::Tab, "\x19", flags};
  if (code == '\r' || code == '\t' || code == 0x1B || code == 0x7F) {
    KeyStroke stroke = *keyStrokeOfCharacter(static_cast<char32_t>(code));
    stroke.Flags |= flags;
    return stroke;
  }
  // Code 0 stands for text that no key typed, as an input method sends it.
  if (code == 0 && text.empty()) return std::nullopt;
  const std::optional<KeyStroke> key =
      code > 0 ? keyStrokeOfCharacter(static_cast<char32_t>(code)) : std::nullopt;
  return KeyStroke{key ? key->KeyNumber : Key::Unknown, characterTyped(code, flags, text), flags};
}

// The numbers of a sequence's parameter bytes; sub-parameters after ":" are ignored.
std::vector<int> parametersOf(std::string_view text) {
  std::vector<int> numbers(1, 0);
  bool inSubParameter = false;
  for (const char byte : text) {
    if (byte == ';') {
      numbers.push_back(0);
      inSubParameter = false;
    } else if (byte == ':') {
      inSubParameter = true;
    } else if (byte >= '0' && byte <= '9' && !inSubParameter) {
      numbers.back() = std::min(numbers.back() * 10 + (byte - '0'), LargestParameter);
    }
  }
  return numbers;
}

// The sub-parameters of parameter `index` (counted from 0), split at ":"; an empty one is 0.
std::vector<int> subParametersOf(std::string_view text, std::size_t index) {
  for (std::size_t skipped = 0; skipped < index; ++skipped) {
    const std::size_t semicolon = text.find(';');
    if (semicolon == std::string_view::npos) return {};
    text.remove_prefix(semicolon + 1);
  }
  std::vector<int> numbers(1, 0);
  for (const char byte : text.substr(0, text.find(';'))) {
    if (byte == ':') {
      numbers.push_back(0);
    } else if (byte >= '0' && byte <= '9') {
      numbers.back() = std::min(numbers.back() * 10 + (byte - '0'), LargestParameter);
    }
  }
  return numbers;
}

// The event type that the kitty protocol adds to the modifiers: "1;2:3" is Shift's release.
int eventTypeOf(std::string_view text) {
  const std::vector<int> modifiers = subParametersOf(text, 1);
  return modifiers.size() >= 2 && modifiers[1] != 0 ? modifiers[1] : PressEvent;
}

int parameter(const std::vector<int>& numbers, std::size_t index, int missing) {
  return index < numbers.size() && numbers[index] != 0 ? numbers[index] : missing;
}

// Mouse buttons and modifiers as xterm codes them: buttons 0..2 in the low bits, 3 for a
// release without a button, Shift 4, Meta 8, Control 16, motion 32, the wheel 64.
std::optional<MouseReport> mouseReport(int code, int column, int line, bool pressed) {
  if ((code & (32 | 64 | 128)) != 0 || (code & 3) == 3) return std::nullopt;
  MouseReport report;
  report.Column = column;
  report.Line = line;
  report.Button = code & 3;
  report.Pressed = pressed;
  if (code & 4) report.Flags |= ShiftFlag;
  if (code & 8) report.Flags |= OptionFlag;
  if (code & 16) report.Flags |= ControlFlag;
  return report;
}

bool isParameterByte(char byte) {
  return byte >= 0x30 && byte <= 0x3F;
}

bool isIntermediateByte(char byte) {
  return byte >= 0x20 && byte <= 0x2F;
}

bool isFinalByte(char byte) {
  return byte >= 0x40 && byte <= 0x7E;
}

}  // namespace

void InputParser::feed(std::string_view bytes, std::vector<TerminalInput>& inputs) {
  pending_.append(bytes);
  for (;;) {
    if (pasting_) {
      takePaste(inputs);
      if (pasting_) return;
      continue;
    }
    if (pending_.empty()) return;
    Step step = readOne(pending_);
    if (step.Consumed == 0) return;
    pending_.erase(0, step.Consumed);
    if (step.Input) inputs.push_back(std::move(*step.Input));
  }
}

std::optional<std::chrono::milliseconds> InputParser::patience() const {
  if (pasting_) return PasteTimeout;
  if (!pending_.empty()) return EscapeTimeout;
  return std::nullopt;
}

void InputParser::timeOut(std::vector<TerminalInput>& inputs) {
  if (pasting_) {
    keepPasted(pending_);
    pasting_ = false;
    inputs.push_back(PastedText{std::move(pasted_)});
    pasted_.clear();
  } else if (pending_.size() == 1 && pending_[0] == Escape) {
    inputs.push_back(*keyStrokeOfCharacter(0x1B));
  } else if (pending_.size() == 2 && pending_[0] == Escape) {
    if (Step alt = readCharacter(std::string_view(pending_).substr(1), OptionFlag); alt.Input) {
      inputs.push_back(std::move(*alt.Input));
    }
  }
  pending_.clear();
}

InputParser::Step InputParser::readOne(std::string_view bytes) {
  if (bytes[0] == Escape) return readEscape(bytes);
  return readCharacter(bytes, 0);
}

// Escape starts a control sequence ("["), a single shift ("O"), or gives the next character
// with Alt; two Escapes are an Escape key and the start of whatever follows.
InputParser::Step InputParser::readEscape(std::string_view bytes) {
  if (bytes.size() < 2) return {};
  switch (bytes[1]) {
    case '[':
      return readControlSequence(bytes);
    case 'O':
      return readSingleShift(bytes);
    case Escape:
      return {1, *keyStrokeOfCharacter(0x1B)};
    default:
      break;
  }
  Step alt = readCharacter(bytes.substr(1), OptionFlag);
  if (alt.Consumed > 0) ++alt.Consumed;
  return alt;
}

InputParser::Step InputParser::readControlSequence(std::string_view bytes) {
  // The Linux console's F1..F5: Escape [ [ A..E.
  if (bytes.size() >= 3 && bytes[2] == '[') {
    if (bytes.size() < 4) return {};
    if (bytes[3] >= 'A' && bytes[3] <= 'E')
      return {4, strokeOf(functionKeyNumber(bytes[3] - 'A' + 1), 0)};
    return {4, std::nullopt};
  }
  // A mouse report in xterm's first form: Escape [ M and three bytes of 32 + value.
  if (bytes.size() >= 3 && bytes[2] == 'M') {
    if (bytes.size() < 6) return {};
    const int code = static_cast<unsigned char>(bytes[3]) - 32;
    const int column = static_cast<unsigned char>(bytes[4]) - 32;
    const int line = static_cast<unsigned char>(bytes[5]) - 32;
    const bool release = (code & 3) == 3;
    std::optional<MouseReport> report = release ? mouseReport(code & ~3, column, line, false)
                                                : mouseReport(code, column, line, true);
    if (release && report) report->Button = 0;
    return {6, report ? std::optional<TerminalInput>(*report) : std::nullopt};
  }
  std::size_t end = 2;
  while (end < bytes.size() && isParameterByte(bytes[end])) ++end;
  const std::size_t parametersEnd = end;
  while (end < bytes.size() && isIntermediateByte(bytes[end])) ++end;
  if (end >= bytes.size()) {
    if (end > LongestSequence) return {end, std::nullopt};
    return {};
  }
  if (!isFinalByte(bytes[end])) return {end, std::nullopt};  // broken off by another byte
  const char final = bytes[end];
  const Step done{end + 1, std::nullopt};
  std::string_view text = bytes.substr(2, parametersEnd - 2);
  const char marker = !text.empty() && text[0] >= '<' && text[0] <= '?' ? text[0] : 0;
  if (marker != 0) text.remove_prefix(1);
  const std::vector<int> numbers = parametersOf(text);
  if (marker == '<' && (final == 'M' || final == 'm')) {
    const std::optional<MouseReport> report =
        mouseReport(numbers[0], parameter(numbers, 1, 1), parameter(numbers, 2, 1), final == 'M');
    return {done.Consumed, report ? std::optional<TerminalInput>(*report) : std::nullopt};
  }
  // The answer to the query of the keyboard protocol: its enhancements, 2 for releases.
  if (marker == '?' && final == 'u' && parametersEnd == end) {
    if ((numbers[0] & 2) == 0) return done;
    return {done.Consumed, KeyReleasesReported{}};
  }
  if (marker != 0 || parametersEnd != end) return done;  // replies and other private forms
  const Int flags = modifierFlags(parameter(numbers, 1, 1));
  const bool release = eventTypeOf(text) == ReleaseEvent;
  // A press and a repeat alike are a key stroke; a release gives the key's number alone.
  const auto keyEvent = [&](std::optional<KeyStroke> stroke) -> Step {
    if (!stroke) return done;
    if (release) return {done.Consumed, KeyRelease{stroke->KeyNumber}};
    return {done.Consumed, std::move(*stroke)};
  };
  if (final == 'u') return keyEvent(kittyKeyStroke(numbers[0], flags, subParametersOf(text, 2)));
  if (final == '~') {
    const int code = parameter(numbers, 0, 0);
    if (code == 200) {
      pasting_ = true;
      pasted_.clear();
      return done;
    }
    if (const std::optional<Int> key = tildeKey(code)) return keyEvent(strokeOf(*key, flags));
    return done;
  }
  if (final == 'Z') return keyEvent(KeyStroke{Key::Tab, "\x19", ShiftFlag | flags});
  if (const std::optional<Int> key = letterKey(final)) return keyEvent(strokeOf(*key, flags));
  return done;
}

// Escape O, an optional modifier digit (as some terminals send it) and a letter.
InputParser::Step InputParser::readSingleShift(std::string_view bytes) {
  std::size_t end = 2;
  int modifier = 0;
  while (end < bytes.size() && bytes[end] >= '0' && bytes[end] <= '9' && end < 4) {
    modifier = modifier * 10 + (bytes[end] - '0');
    ++end;
  }
  if (end >= bytes.size()) return {};
  const char letter = bytes[end];
  const Int flags = modifierFlags(modifier);
  if (const std::optional<KeyStroke> keypad = keypadKey(letter, flags)) {
    return {end + 1, *keypad};
  }
  if (const std::optional<Int> key = letterKey(letter)) {
    return {end + 1, strokeOf(*key, flags)};
  }
  return {end + 1, std::nullopt};
}

// One character, a control key or printable, typed as a US keyboard types it; a character no
// key types comes with its text alone, as a dead or foreign key would.
InputParser::Step InputParser::readCharacter(std::string_view bytes, Int extraFlags) {
  const Utf8Sequence sequence = decodeUtf8(bytes);
  if (sequence.Status != Utf8Status::Scalar) return {sequence.Length, std::nullopt};
  KeyStroke stroke = keyStrokeOfCharacter(sequence.Scalar)
                         .value_or(KeyStroke{Key::Unknown, utf8Of(sequence.Scalar), 0});
  stroke.Flags |= extraFlags;
  return {sequence.Length, std::move(stroke)};
}

// The paste's bytes up to its end mark; while the mark has not come, all but the bytes that
// may be its beginning.
void InputParser::takePaste(std::vector<TerminalInput>& inputs) {
  const std::size_t end = pending_.find(PasteEnd);
  if (end == std::string::npos) {
    const std::size_t safe =
        pending_.size() > PasteEnd.size() ? pending_.size() - (PasteEnd.size() - 1) : 0;
    keepPasted(std::string_view(pending_).substr(0, safe));
    pending_.erase(0, safe);
    return;
  }
  keepPasted(std::string_view(pending_).substr(0, end));
  pending_.erase(0, end + PasteEnd.size());
  pasting_ = false;
  inputs.push_back(PastedText{std::move(pasted_)});
  pasted_.clear();
}

void InputParser::keepPasted(std::string_view bytes) {
  const std::size_t room = PasteLimit - std::min(PasteLimit, pasted_.size());
  pasted_.append(bytes.substr(0, std::min(room, bytes.size())));
}

}  // namespace rvtools::terminal
