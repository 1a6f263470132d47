// SPDX-License-Identifier: MIT
// Internal to the terminal host: what the bytes from the terminal mean. Characters and control
// keys, the escape sequences of xterm-compatible terminals for cursor, paging, editing,
// function and keypad keys (with their modifiers), the key events of the kitty keyboard
// protocol (presses, repeats and releases of every key), SGR mouse reports and bracketed paste
// become key strokes in the desktop's terms (key number, characters, modifier flags), key
// releases, mouse reports and pasted text. The parser keeps an incomplete sequence across
// reads; a lone Escape is told from the start of a sequence by the caller's timeout.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "rvtools/keys.hpp"

namespace rvtools::terminal {

// A mouse button pressed or released over a terminal cell.
struct MouseReport {
  int Column = 1;  // counted from 1
  int Line = 1;
  int Button = 0;  // 0 left, 1 middle, 2 right
  bool Pressed = true;
  Int Flags = 0;  // modifier flags held
};

// Text that the user pasted into the terminal, as the terminal sent it.
struct PastedText {
  std::string Text;
};

// A key went up; only terminals that speak the kitty keyboard protocol say so.
struct KeyRelease {
  Int KeyNumber = Key::Unknown;
};

// The terminal's answer to the query of its keyboard protocol: it reports key releases.
struct KeyReleasesReported {};

using TerminalInput =
    std::variant<KeyStroke, KeyRelease, KeyReleasesReported, MouseReport, PastedText>;

// How long an incomplete escape sequence may wait for its rest, and a paste for its end.
inline constexpr std::chrono::milliseconds EscapeTimeout{50};
inline constexpr std::chrono::milliseconds PasteTimeout{2000};
// A paste keeps at most this many bytes; the rest is dropped.
inline constexpr std::size_t PasteLimit = 1 << 20;

class InputParser {
 public:
  // Reads the bytes of one read from the terminal and appends what they complete to `inputs`.
  void feed(std::string_view bytes, std::vector<TerminalInput>& inputs);
  // How long to wait for more bytes before calling timeOut; nothing while nothing waits.
  std::optional<std::chrono::milliseconds> patience() const;
  // No more bytes came in time: a lone Escape is the Escape key, Escape with "[" or "O" is that
  // key with Alt, a paste without its end is taken as it is, any other fragment is dropped.
  void timeOut(std::vector<TerminalInput>& inputs);

 private:
  // The result of reading one input at the front of the pending bytes.
  struct Step {
    std::size_t Consumed = 0;  // 0: the bytes are incomplete
    std::optional<TerminalInput> Input;
  };
  Step readOne(std::string_view bytes);
  Step readEscape(std::string_view bytes);
  Step readControlSequence(std::string_view bytes);
  Step readSingleShift(std::string_view bytes);
  Step readCharacter(std::string_view bytes, Int extraFlags);
  void takePaste(std::vector<TerminalInput>& inputs);
  void keepPasted(std::string_view bytes);

  std::string pending_;
  bool pasting_ = false;
  std::string pasted_;
};

}  // namespace rvtools::terminal
