// SPDX-License-Identifier: MIT
// teletype: a host of your own. It runs a program where nothing can be drawn, such as in a pipe:
// what comes on standard input is typed into the program, and when the program has ended its
// text screen goes to standard output; the log goes to standard error. It takes the four steps
// of rvtools/host.hpp: it implements Host, runs the launch sequence, shows the screen (here
// once, at the end), and reports the keys.
//
//   printf 'Ada\n' | Teletype.app/Contents/MacOS/teletype
#include <cstdio>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

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
// Step 1: the Host. A pipe has no place for window frames, menus or auxiliary windows, so
// they live in memory (InMemoryHost); what is left to write is the interface thread and the
// way pictures are shown. Work for the interface thread runs on the calling thread, one piece
// at a time.
class TeletypeHost final : public InMemoryHost {
 public:
  bool isInterfaceThread() const override { return work_.isInterfaceThread(); }
  void runOnInterfaceThread(const std::function<void()>& work) override { work_.run(work); }
  // A host with a display composes the window's picture here (WindowView::composePicture)
  // unless ShownPicture says the one it shows is current. This one shows the text at the end.
  void displayView(UInt8, bool) override {}

 private:
  InterfaceWork work_;
};
// [end]

// [manual host-keys]
// Step 4: every character of standard input becomes the key press that types it, released at
// once, when the program's first window is up.
void typeStandardInput() {
  const std::string input(std::istreambuf_iterator<char>(std::cin), {});
  const std::optional<UInt8> window = waitForFirstWindow();
  if (!window) return;
  for (const char32_t character : scalarsOf(input)) {
    if (const std::optional<KeyStroke> key = keyStrokeOfCharacter(character)) {
      viewKeyDown(*window, key->KeyNumber, key->Characters, key->Flags);
      viewKeyUp();
      viewKeyReleased(key->KeyNumber);
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
  waitForProgramEnd();
  if (WindowView(DefaultWindow).ready())
    std::fputs(unicodeScreenText(DefaultWindow).c_str(), stdout);
  runTerminationSequence();
}
// [end]
