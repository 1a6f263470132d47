// The tmux server of a test: started on a socket in a temporary folder of the test's own, so
// that tests run side by side and never meet the user's tmux; killed with its panes at the end.
#include "tmux_session.hpp"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace rvtools::terminal::test {
namespace {

std::string shellQuoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string outputOf(const std::string& command) {
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    std::array<char, 4096> buffer;
    std::size_t count;
    while ((count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
      output.append(buffer.data(), count);
    }
    pclose(pipe);
  }
  return output;
}

}  // namespace

TmuxSession::TmuxSession(const std::string& command, int columns, int lines) {
  char pattern[] = "/tmp/rvtools-terminal-XXXXXX";
  folder_ = mkdtemp(pattern);
  socket_ = folder_ + "/tmux";
  tmux("-f /dev/null new-session -d -x " + std::to_string(columns) + " -y " +
       std::to_string(lines) + " -c " + shellQuoted(folder_) + " -e COLORTERM=truecolor " +
       shellQuoted(command) + " \\; set-option -g set-clipboard on");
}

TmuxSession::~TmuxSession() {
  tmux("kill-server");
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TmuxSession::tmux(const std::string& arguments) const {
  return outputOf(std::string(RVTOOLS_TMUX) + " -S " + shellQuoted(socket_) + " " + arguments +
                  " 2>/dev/null");
}

std::vector<std::string> TmuxSession::screen(bool colours) const {
  std::istringstream text(tmux(colours ? "capture-pane -p -e" : "capture-pane -p"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

bool TmuxSession::waitForScreen(const std::function<bool(const std::vector<std::string>&)>& wanted,
                                std::chrono::milliseconds timeout) const {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    if (wanted(screen())) return true;
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(50ms);
  }
}

bool TmuxSession::waitForLine(int line, const std::string& start,
                              std::chrono::milliseconds timeout) const {
  return waitForScreen(
      [&](const std::vector<std::string>& lines) {
        return static_cast<int>(lines.size()) > line && lines[line].starts_with(start);
      },
      timeout);
}

void TmuxSession::sendKeys(const std::string& keys) const {
  tmux("send-keys " + keys);
}

std::string TmuxSession::paneFormat(const std::string& format) const {
  std::string value = tmux("display-message -p " + shellQuoted(format));
  while (!value.empty() && value.back() == '\n') value.pop_back();
  return value;
}

int TmuxSession::programProcess() const {
  const std::string shell = paneFormat("#{pane_pid}");
  std::ifstream children("/proc/" + shell + "/task/" + shell + "/children");
  int process = 0;
  children >> process;
  return process;
}

bool processEnded(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/stat");
  std::string pid, name, state;
  return !(status >> pid >> name >> state) || state == "Z";
}

}  // namespace rvtools::terminal::test
