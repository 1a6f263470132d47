// SPDX-License-Identifier: MIT
// teletype: a host of your own. It runs a program where nothing can be drawn, such as in a pipe:
// what comes on standard input is typed into the program, and when the program has ended its
// text screen goes to standard output; the log goes to standard error. It takes the four steps
// of rvtools/host.hpp: it implements Host, runs the launch sequence, shows the screen (here
// once, at the end), and reports the keys.
//
//   printf 'Ada\n' | Teletype.app/Contents/MacOS/teletype
#include <array>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <rvtools/host.hpp>
#include <rvtools/rvtools.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

// The program it runs: a question and an answer.
void greet() {
  t_InitWindow(0, 8, 32, 4, 0, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(0, "\f");
  const std::string name = t_InputForm(0, "Your name: ", "", false, 4, 20);
  t_Print(0, "Hello, "s + name + "!");
  t_QuitProgram(0);
}

// [manual host-class]
// Step 1: the Host. Its windows exist only as frames in memory; a window's handle is the
// address of its frame. Work for the interface thread runs on the calling thread, one piece at
// a time.
class TeletypeHost : public Host {
 public:
  bool isInterfaceThread() const override { return std::this_thread::get_id() == interface_; }
  void runOnInterfaceThread(const std::function<void()>& work) override {
    std::lock_guard lock(mutex_);
    work();
  }
  PlatformHandle windowHandle(UInt8 window) override {
    return window <= MainWindowNumber ? &frames_[window] : nullptr;
  }
  PlatformHandle viewHandle(UInt8 window) override {
    return window < 8 ? &frames_[window] : nullptr;
  }
  // A host with a display composes the window's picture here (t_WindowImageInto) when its
  // pictureVersion has changed, and shows it. This one shows the text screen at the end.
  void displayView(UInt8, bool) override {}
  // [end]

  void setWindowTitle(UInt8, const std::string&) override {}
  void setWindowTitleVisible(UInt8, bool) override {}
  void setWindowPosition(UInt8 window, Int x, Int y) override {
    frames_[window].X = x;
    frames_[window].Y = y;
  }
  void setWindowContentSize(UInt8 window, Int width, Int height) override {
    frames_[window].Width = width;
    frames_[window].Height = height;
  }
  void bringWindowToFront(UInt8 window) override {
    frames_[window].Visible = true;
    front_ = window;
  }
  void centerWindow(UInt8) override {}
  void setWindowVisible(UInt8 window, bool visible) override { frames_[window].Visible = visible; }
  WindowFrame windowFrame(UInt8 window) override { return frames_[window]; }
  ScreenSize screenSize() override { return {1920, 1080}; }
  void setBorderColor(UInt8, t_RGBColor) override {}
  std::string bundlePath() override { return bundleAroundExecutable(); }
  bool playSound(Sound) override { return false; }
  void systemBeep() override {}
  std::string pasteboardText() override { return pasteboard_; }
  void setPasteboardText(const std::string& text) override { pasteboard_ = text; }
  void setPasteboardImage(const t_Image&) override { pasteboard_.clear(); }
  // No menus: the start-up scan of the menus logs that it finds none.
  std::optional<std::vector<std::string>> menuItemTitles(const std::string&) override { return {}; }
  void deleteMenuItem(const std::string&, Int) override {}
  UInt8 frontWindow() override { return front_; }
  std::string runFilePanel(const FilePanelRequest&) override { return {}; }
  // The pasteboard, printer and console windows keep their text.
  std::optional<std::string> textViewText(UInt8 window) override { return texts_[window - 8]; }
  bool appendToTextView(UInt8 window, const std::string& text) override {
    texts_[window - 8] += text;
    return true;
  }
  bool clearTextView(UInt8 window) override {
    texts_[window - 8].clear();
    return true;
  }
  void preparePasteboardView() override { texts_[0].clear(); }

 private:
  const std::thread::id interface_ = std::this_thread::get_id();
  std::recursive_mutex mutex_;
  std::array<WindowFrame, MainWindowNumber + 1> frames_{};
  std::array<std::string, 3> texts_;
  std::string pasteboard_;
  UInt8 front_ = NoWindow;
};

bool programRunning() {
  return ProgramStartPending || runningProgramThreads() > 0;
}

void waitWhile(bool (*condition)()) {
  while (condition()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

bool waitingForFirstWindow() {
  const UInt8 window = DefaultWindow;
  const bool up = MemoryInitialized && window < 8 && Windows[window].Initialized;
  return !up && programRunning();
}

// [manual host-keys]
// Step 4: every character of standard input becomes the key press that types it.
void typeStandardInput() {
  const std::string input(std::istreambuf_iterator<char>(std::cin), {});
  waitWhile(waitingForFirstWindow);
  for (const char32_t character : scalarsOf(input)) {
    if (const std::optional<KeyStroke> key = keyStrokeOfCharacter(character)) {
      viewKeyDown(DefaultWindow, key->KeyNumber, key->Characters, key->Flags);
      viewKeyUp();
    }
  }
}
// [end]

}  // namespace

// [manual host-main]
int main() {
  // Steps 1 and 2: install the host, the log on standard error, and launch the program. The
  // host lives as long as the process, since the refresh thread still uses it at the end.
  static auto* host = new TeletypeHost;
  setHost(*host);
  setLogSink([](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); });
  runLaunchSequence(greet);

  // Steps 3 and 4: type, then show the screen the program ended with.
  typeStandardInput();
  waitWhile(programRunning);
  if (DefaultWindow < 8) std::fputs(unicodeScreenText(DefaultWindow).c_str(), stdout);
  runTerminationSequence();
}
// [end]
