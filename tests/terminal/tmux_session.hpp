// A tmux server of one test's own, with one pane of a given size running a command: its
// screen as text (with colours as SGR sequences, if asked), its modes, keys sent to it.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace rvtools::terminal::test {

using namespace std::chrono_literals;

class TmuxSession {
 public:
  // Starts `command` (a shell command) in a pane of columns x lines, in a folder of its own
  // (folder()), with COLORTERM=truecolor and the clipboard open to programs (OSC 52).
  TmuxSession(const std::string& command, int columns, int lines);
  ~TmuxSession();
  TmuxSession(const TmuxSession&) = delete;
  TmuxSession& operator=(const TmuxSession&) = delete;

  const std::string& folder() const { return folder_; }
  // Runs tmux with `arguments` (already quoted for the shell) on this server; its output.
  std::string tmux(const std::string& arguments) const;
  // The pane's lines, with SGR colour sequences when `colours`.
  std::vector<std::string> screen(bool colours = false) const;
  // Waits until `wanted` holds for the screen (as text); false after the timeout.
  bool waitForScreen(const std::function<bool(const std::vector<std::string>&)>& wanted,
                     std::chrono::milliseconds timeout = 20s) const;
  bool waitForLine(int line, const std::string& start,
                   std::chrono::milliseconds timeout = 20s) const;
  void sendKeys(const std::string& keys) const;
  // A tmux format of the pane, such as "#{alternate_on}".
  std::string paneFormat(const std::string& format) const;
  // The process that the pane's shell started, or 0.
  int programProcess() const;

 private:
  std::string folder_;
  std::string socket_;
};

// Whether process `process` is gone (or only waits to be reaped).
bool processEnded(int process);

}  // namespace rvtools::terminal::test
