// SPDX-License-Identifier: MIT
// The terminal's modes, its size and its output, and the signal handlers that give it back.
// What the handlers need (the saved modes, the output descriptor, the restoring bytes) is set
// before they are installed and never changes afterwards, so that they read it without a lock.
// Depends on POSIX only.
#include "terminal/terminal_device.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace rvtools::terminal {
namespace {

// Alternate screen, hidden cursor, no automatic wrap, keypad application mode, mouse buttons
// reported in the SGR form, bracketed paste; then, for terminals that speak the kitty keyboard
// protocol, its enhancements 27 pushed on the alternate screen's stack (codes without ambiguity
// 1, repeats and releases 2, every key as a key event 8, the text it typed 16) and the query
// of what the terminal took. Other terminals ignore the last two.
constexpr std::string_view TakeOverSequence =
    "\x1B[?1049h\x1B[?25l\x1B[?7l\x1B=\x1B[?1000h\x1B[?1006h\x1B[?2004h\x1B[>27u\x1B[?u";
// The same undone, after a cancel of any sequence that a cut-off frame left open and the end of
// its synchronized update; the keyboard protocol's enhancements are popped before the alternate
// screen, whose stack holds them, is left.
constexpr char GiveBackSequence[] =
    "\x18\x1B[?2026l\x1B[<u\x1B[?2004l\x1B[?1006l\x1B[?1000l\x1B>\x1B[0m\x1B[?7h\x1B[?25h"
    "\x1B[?1049l";

constexpr int TerminationSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr int CrashSignals[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

termios savedModes;
int outputDescriptor = -1;
int resizePipe[2] = {-1, -1};
std::atomic<bool> taken{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void writeAll(int descriptor, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
}

// Async-signal-safe: write and tcsetattr only.
void giveBackTerminal() {
  if (!taken.exchange(false)) return;
  const int savedErrno = errno;
  writeAll(outputDescriptor, GiveBackSequence, sizeof GiveBackSequence - 1);
  tcsetattr(STDIN_FILENO, TCSANOW, &savedModes);
  errno = savedErrno;
}

// The handler ran with the signal blocked and its default action restored (SA_RESETHAND); the
// signal raised again here takes that default action as soon as the handler returns.
void giveBackAndGoOn(int signal) {
  giveBackTerminal();
  raise(signal);
}

void noteResize(int) {
  const int savedErrno = errno;
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = ::write(resizePipe[1], &byte, 1);
  errno = savedErrno;
}

void install(int signal, void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

termios rawModes(termios modes) {
  modes.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR |
                                          ICRNL | IXON | IXOFF);
  modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  modes.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
  modes.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB);
  modes.c_cflag |= CS8;
  modes.c_cc[VMIN] = 1;
  modes.c_cc[VTIME] = 0;
  return modes;
}

}  // namespace

bool TerminalDevice::takeOver() {
  if (taken || !isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO)) return false;
  if (tcgetattr(STDIN_FILENO, &savedModes) != 0) return false;
  outputDescriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  if (outputDescriptor < 0) return false;
  if (resizePipe[0] < 0 && pipe2(resizePipe, O_CLOEXEC | O_NONBLOCK) != 0) return false;
  const termios raw = rawModes(savedModes);
  taken = true;
  for (const int signal : TerminationSignals) install(signal, giveBackAndGoOn, SA_RESETHAND);
  for (const int signal : CrashSignals) install(signal, giveBackAndGoOn, SA_RESETHAND);
  install(SIGWINCH, noteResize, SA_RESTART);
  tcsetattr(STDIN_FILENO, TCSANOW, &raw);
  write(TakeOverSequence);
  return true;
}

void TerminalDevice::giveBack() {
  std::lock_guard lock(writing_);
  giveBackTerminal();
}

void TerminalDevice::write(std::string_view bytes) {
  std::lock_guard lock(writing_);
  if (taken) writeAll(outputDescriptor, bytes.data(), bytes.size());
}

TerminalSize TerminalDevice::size() const {
  winsize window{};
  if (ioctl(outputDescriptor, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 ||
      window.ws_row == 0) {
    return {};
  }
  return {window.ws_col, window.ws_row};
}

int TerminalDevice::inputDescriptor() const {
  return STDIN_FILENO;
}

int TerminalDevice::resizeDescriptor() const {
  return resizePipe[0];
}

void TerminalDevice::drainResizes() {
  char bytes[64];
  while (::read(resizePipe[0], bytes, sizeof bytes) > 0) {
  }
}

}  // namespace rvtools::terminal
