// SPDX-License-Identifier: MIT
// Internal to the terminal host: the host itself. It keeps in memory what a terminal has no
// place for (menus, the auxiliary windows' texts, window frames) and shows the graphic window
// in front on the terminal. Its interface thread is the one that
// runs `run`: it reads the terminal, hands keys, clicks and pastes to the runtime, runs work
// that other threads hand over, and draws a frame whenever the picture in front changed.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "rvtools/host.hpp"
#include "terminal/cell_renderer.hpp"
#include "terminal/guessed_releases.hpp"
#include "terminal/input_parser.hpp"
#include "terminal/terminal_device.hpp"
#include "terminal/tone_stream.hpp"
#include "terminal/window_cells.hpp"

namespace rvtools::terminal {

class TerminalHost final : public InMemoryHost {
 public:
  TerminalHost(TerminalDevice& device, ColourDepth depth);

  // Runs the launch sequence, which starts `entry` on the program thread, and then the
  // terminal until the user leaves; ends the process.
  [[noreturn]] void run(std::function<void()> entry);

  // The interface thread is the one that runs `run`; a picture is drawn there when it changed.
  bool isInterfaceThread() const override;
  void runOnInterfaceThread(const std::function<void()>& work) override;
  void displayView(UInt8 window, bool deferred) override;

  // The windows shown are kept in order, the front one drawn on the terminal.
  void setWindowVisible(UInt8 window, bool visible) override;
  void bringWindowToFront(UInt8 window) override;
  UInt8 frontWindow() override;

  // The bell, and the terminal's clipboard.
  bool playSound(Sound sound) override;
  void systemBeep() override;
  void setPasteboardText(const std::string& text) override;
  void setPasteboardScreenText(UInt8 window, const std::string& screen) override;
  // Tones and music through PortAudio's default output device.
  bool startSoundOutput() override;

 private:
  // The interface thread's loop and what it does with each input.
  void waitAndReadInput(std::vector<TerminalInput>& inputs);
  int pollTimeoutMilliseconds() const;
  void handle(const TerminalInput& input);
  void handleKey(const KeyStroke& key);
  void handleMenuKey(const KeyStroke& key);
  void handleMouse(const MouseReport& report);
  void handlePaste(const PastedText& paste);
  void noticeProgramEnd();
  [[noreturn]] void leave(int status);

  // The runtime's own actions of the one-line menu.
  void copyText();
  void savePicture();

  // Frames.
  UInt8 shownWindow();
  void requestFrame();
  void drawFrame();
  std::string hostLineText(const WindowPlacement& placement, TerminalSize size);
  void wake();

  TerminalDevice& device_;
  int wakePipe_[2] = {-1, -1};
  InterfaceWork work_;
  ToneStream tones_;

  std::mutex orderMutex_;
  std::vector<UInt8> frontToBack_;  // shown windows, the front one last

  // Whether a frame is to be drawn, and what the last one showed, read by the refresh thread
  // to skip unchanged pictures.
  std::atomic<bool> frameWanted_{true};
  ShownPicture shown_;

  // Owned by the interface thread.
  CellRenderer renderer_;
  InputParser parser_;
  std::chrono::steady_clock::time_point lastInput_;
  bool releasesReported_ = false;  // the terminal said it reports key releases
  GuessedReleases guessedReleases_;
  WindowPlacement placement_;
  ComposedPicture picture_;
  bool menuOpen_ = false;
  bool programEnded_ = false;
  std::string message_;
};

}  // namespace rvtools::terminal
