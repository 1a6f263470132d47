// SPDX-License-Identifier: MIT
// Internal to the terminal host: the terminal itself. Taking it over puts standard input into
// raw mode and switches the screen to what the host needs (alternate screen, hidden cursor,
// mouse and paste reporting, keypad application mode, no automatic wrap, the kitty keyboard
// protocol's key events where the terminal has them); giving it back undoes all of it.
// Handlers for the termination signals (SIGINT, SIGTERM, SIGHUP, SIGQUIT) and for crashes
// (SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL) give the terminal back with async-signal-safe
// calls only, then let the signal take its default course.
#pragma once

#include <mutex>
#include <string_view>

namespace rvtools::terminal {

struct TerminalSize {
  int Columns = 80;
  int Lines = 24;
};

class TerminalDevice {
 public:
  // Takes over the terminal on standard input and output; false, changing nothing, when either
  // is no terminal. Output goes through a descriptor of the device's own from then on, so that
  // standard output may be sent elsewhere.
  bool takeOver();
  // Gives the terminal back as it was found; later calls do nothing.
  void giveBack();

  // Writes all of `bytes` to the terminal; any thread may write, one at a time.
  void write(std::string_view bytes);
  TerminalSize size() const;

  // Readable when the user typed something.
  int inputDescriptor() const;
  // Readable after the terminal changed its size (SIGWINCH); drainResizes() empties it.
  int resizeDescriptor() const;
  void drainResizes();

 private:
  std::mutex writing_;
};

}  // namespace rvtools::terminal
