// SPDX-License-Identifier: MIT
// The smallest host: the required core of Host and nothing more, none of the shared pieces of
// rvtools/host_support.hpp behind it. It runs the first example, types one key, and writes the
// screen the program ends with to standard output, the log to standard error. That the example
// ends with its usual screen shows that the core alone carries a program.
#include <atomic>
#include <cstdio>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <rvtools/host.hpp>

// The first example's program (examples/hello.cpp).
void hello();

namespace {

using namespace rvtools;

// Work for the interface thread runs on the calling thread, one piece at a time; windows have
// no frames, and the window in front is the last one brought there.
class MinimalHost final : public Host {
 public:
  bool isInterfaceThread() const override { return true; }
  void runOnInterfaceThread(const std::function<void()>& work) override {
    std::lock_guard lock(mutex_);
    work();
  }
  void displayView(UInt8, bool) override {}
  void setWindowTitle(UInt8, const std::string&) override {}
  void setWindowContentSize(UInt8, Int, Int) override {}
  void setWindowVisible(UInt8, bool) override {}
  void bringWindowToFront(UInt8 window) override { front_ = window; }
  WindowFrame windowFrame(UInt8) override { return {}; }
  UInt8 frontWindow() override { return front_; }

 private:
  std::recursive_mutex mutex_;
  std::atomic<UInt8> front_{NoWindow};
};

}  // namespace

int main() {
  // The host lives as long as the process, since the refresh thread still uses it at the end.
  static auto* host = new MinimalHost;
  setHost(*host);
  setLogSink([](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); });
  runLaunchSequence(hello);

  const std::optional<UInt8> window = waitForFirstWindow();
  if (!window) return 1;
  const std::optional<KeyStroke> key = keyStrokeOfCharacter(U'x');
  viewKeyDown(*window, key->KeyNumber, key->Characters, key->Flags);
  viewKeyUp();
  waitForProgramEnd();
  std::fputs(unicodeScreenText(*window).c_str(), stdout);
  runTerminationSequence();
}
