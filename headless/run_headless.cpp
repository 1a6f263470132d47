// SPDX-License-Identifier: MIT
// runHeadless: the whole main of a program without a display. It installs a headless host, seeds
// the random numbers when asked, runs the launch sequence, starts recording the program's first
// window once it is up, types, clicks and chooses what the command line asks for, waits for the
// program to end, and leaves the recording, the sound and the first window's picture and screen
// in files when asked to (run_options.hpp). Interrupted by SIGINT or SIGTERM, it leaves them as
// they are at that moment before it ends.
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <optional>
#include <thread>

#include "headless/run_options.hpp"
#include "rvtools/headless.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/picture.hpp"

namespace rvtools {
namespace {

using namespace std::chrono_literals;
using headless::Click;
using headless::KeyStep;
using headless::MenuChoice;
using headless::Pause;

// Waits until the program has taken every key typed so far, or has ended.
void waitUntilKeysTaken() {
  while (EventPending && programRunning()) std::this_thread::sleep_for(10ms);
}

// Waits out a pause between keys, in steps of at most 10 ms, or until the program has ended.
void waitOut(const Pause& pause) {
  for (Int left = pause.Milliseconds; left > 0 && programRunning();) {
    const Int step = std::min<Int>(left, 10);
    std::this_thread::sleep_for(std::chrono::milliseconds(step));
    left -= step;
  }
}

// Types the keys of the command line into one window. A key is held from its press until the
// next key goes down, so that a pause before that key is the time the program finds it held.
class Typist {
 public:
  explicit Typist(UInt8 window) : window_(window) {}

  void type(const std::vector<KeyStep>& steps) {
    for (const KeyStep& step : steps) {
      if (const auto* key = std::get_if<KeyStroke>(&step)) press(*key);
      if (const auto* pause = std::get_if<Pause>(&step)) waitOut(*pause);
    }
  }

 private:
  void press(const KeyStroke& key) {
    viewKeyReleased(heldKey_);
    viewKeyDown(window_, key.KeyNumber, key.Characters, key.Flags);
    viewKeyUp();
    heldKey_ = key.KeyNumber;
  }

  UInt8 window_;
  Int heldKey_ = Key::Unknown;
};

// A left click at a pixel of the drawing area, in window coordinates: the content's lower left
// is the origin, the border included.
void click(UInt8 window, const Click& at) {
  const WindowPoint point =
      WindowView(window).windowPointOf(static_cast<double>(at.X), static_cast<double>(at.Y));
  viewMouseDown(window, {1, 0}, point.X, point.Y, false);
  viewMouseUp();
}

void choose(HeadlessHost& host, const MenuChoice& choice) {
  for (const HeadlessHost::Menu& menu : host.menus()) {
    for (const HeadlessHost::MenuItem& item : menu.Items) {
      if (item.Title != choice.ItemTitle) continue;
      t_MenuItem chosen;
      chosen.MenuTitle = menu.Title;
      chosen.ItemTitle = item.Title;
      chosen.Tag = item.Tag;
      t_MenuEventHandler(chosen);
      return;
    }
  }
  std::fprintf(stderr, "runHeadless: no menu item is titled \"%s\"\n", choice.ItemTitle.c_str());
}

void startRecording(const std::string& path) {
  if (path.empty()) return;
  if (const std::optional<UInt8> window = waitForFirstWindow()) t_RecordStart(*window, path);
}

void giveInputs(HeadlessHost& host, const std::vector<headless::ScriptedInput>& inputs) {
  if (inputs.empty()) return;
  const std::optional<UInt8> window = waitForFirstWindow();
  if (!window) return;
  Typist typist(*window);
  for (const headless::ScriptedInput& input : inputs) {
    waitUntilKeysTaken();
    if (const auto* keys = std::get_if<std::vector<KeyStep>>(&input)) typist.type(*keys);
    if (const auto* at = std::get_if<Click>(&input)) click(*window, *at);
    if (const auto* choice = std::get_if<MenuChoice>(&input)) choose(host, *choice);
  }
}

void writeScreen(UInt8 window, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file << unicodeScreenText(window) << '\n' << screenColorText(window);
  if (!file.flush()) std::fprintf(stderr, "runHeadless: cannot write %s\n", path.c_str());
}

// Leaves the files once, whether the program's end or an interruption comes first.
void leaveFiles(HeadlessHost& host, const headless::RunOptions& options) {
  static std::once_flag left;
  std::call_once(left, [&] {
    host.finishSoundOutput();
    const UInt8 window = DefaultWindow;
    if (!options.RecordPath.empty() && t_IsRecording(window)) t_RecordStop(window);
    if (!options.PicturePath.empty()) t_SavePicture(window, options.PicturePath);
    if (!options.ScreenPath.empty()) writeScreen(window, options.ScreenPath);
  });
}

// SIGINT and SIGTERM, unless the process was started with them ignored (as a shell starts a
// job in the background without job control), which stays so.
sigset_t interruptions() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM}) {
    struct sigaction current {};
    if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
      sigaddset(&signals, signal);
    }
  }
  return signals;
}

// Blocks the interruptions in this thread and so in every thread started after it, and waits
// for them on a thread of its own: there, outside any signal handler, it leaves the files and
// then ends the process by the signal's default action, so that its parent sees it interrupted.
void leaveFilesWhenInterrupted(HeadlessHost& host, const headless::RunOptions& options) {
  const sigset_t signals = interruptions();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread([&host, options, signals] {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0) return;
    leaveFiles(host, options);
    std::signal(signal, SIG_DFL);
    sigset_t raised;
    sigemptyset(&raised);
    sigaddset(&raised, signal);
    pthread_sigmask(SIG_UNBLOCK, &raised, nullptr);
    raise(signal);
  }).detach();
}

}  // namespace

int runHeadless(int argc, char** argv, std::function<void()> entry) {
  const headless::RunOptions options = headless::parseRunOptions(argc, argv);
  if (!options.Error.empty()) {
    std::fprintf(stderr, "runHeadless: %s\n", options.Error.c_str());
    return 2;
  }
  static auto* host = new HeadlessHost;
  setHost(*host);
  if (!options.SoundPath.empty()) host->setSoundFile(options.SoundPath);
  if (options.Seed) t_Randomize(*options.Seed);
  leaveFilesWhenInterrupted(*host, options);
  runLaunchSequence(std::move(entry));
  startRecording(options.RecordPath);
  giveInputs(*host, options.Inputs);
  waitForProgramEnd();
  leaveFiles(*host, options);
  runTerminationSequence();
  return 0;
}

}  // namespace rvtools
