// SPDX-License-Identifier: MIT
// The drop demo in tmux at 80 x 26 as a user meets it, and the terminal given back after the
// program's end, the menu's Quit, a hang-up and a crash, and when the pane goes; the plot
// example's pixel drawings as block symbols; the music example in silence where there is no
// audio device.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "terminal/utf8.hpp"

namespace rvtools::terminal::test {
namespace {

using namespace std::chrono_literals;

std::string shellQuoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string outputOf(const std::string& command) {
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    std::array<char, 4096> buffer;
    for (std::size_t count; (count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
      output.append(buffer.data(), count);
    }
    pclose(pipe);
  }
  return output;
}

std::string fileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The end of a text that may be long, as a failure shows it.
std::string lastPart(const std::string& text) {
  constexpr std::size_t Shown = 16000;
  return text.size() <= Shown ? text : "..." + text.substr(text.size() - Shown);
}

// A tmux server of the test's own, on a socket in a temporary folder of its own, so that tests
// run side by side and never meet the user's tmux; killed with its panes at the end. Its one pane
// of columns x lines runs a shell command in that folder, with COLORTERM=truecolor and the
// clipboard open to programs (OSC 52). When the test has failed, the end shows the pane, the file
// "log" of the folder (where the demo's --log sends its log and its standard error) and what
// tmux wrote to standard error.
class TmuxSession {
 public:
  TmuxSession(const std::string& command, int columns, int lines) {
    char pattern[] = "/tmp/rvtools-terminal-XXXXXX";
    folder_ = mkdtemp(pattern);
    socket_ = folder_ + "/tmux";
    errors_ = folder_ + "/tmux-errors";
    tmux("-f /dev/null new-session -d -x " + std::to_string(columns) + " -y " +
         std::to_string(lines) + " -c " + shellQuoted(folder_) + " -e COLORTERM=truecolor " +
         shellQuoted(command) + " \\; set-option -g set-clipboard on");
  }
  ~TmuxSession() {
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << "the pane:\n"
                    << tmux("capture-pane -p") << "\nits log and standard error:\n"
                    << lastPart(fileText(folder_ + "/log")) << "\ntmux's standard error:\n"
                    << lastPart(fileText(errors_));
    }
    tmux("kill-server");
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TmuxSession(const TmuxSession&) = delete;
  TmuxSession& operator=(const TmuxSession&) = delete;

  const std::string& folder() const { return folder_; }
  // Runs tmux with `arguments` (already quoted for the shell) on this server; its output. Its
  // standard error goes to a file of the folder.
  std::string tmux(const std::string& arguments) const {
    return outputOf(std::string(RVTOOLS_TMUX) + " -S " + shellQuoted(socket_) + " " + arguments +
                    " 2>>" + shellQuoted(errors_));
  }
  // The pane's lines, with SGR colour sequences when `colours`.
  std::vector<std::string> screen(bool colours = false) const {
    std::istringstream text(tmux(colours ? "capture-pane -p -e" : "capture-pane -p"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }
  // Waits until `wanted` holds for the screen (as text); false after the timeout.
  bool waitForScreen(const std::function<bool(const std::vector<std::string>&)>& wanted,
                     std::chrono::milliseconds timeout = 20s) const {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
      if (wanted(screen())) return true;
      if (std::chrono::steady_clock::now() >= deadline) return false;
      std::this_thread::sleep_for(50ms);
    }
  }
  bool waitForLine(int line, const std::string& start,
                   std::chrono::milliseconds timeout = 20s) const {
    return waitForScreen(
        [&](const std::vector<std::string>& lines) {
          return static_cast<int>(lines.size()) > line && lines[line].starts_with(start);
        },
        timeout);
  }
  void sendKeys(const std::string& keys) const { tmux("send-keys " + keys); }
  // A tmux format of the pane, such as "#{alternate_on}".
  std::string paneFormat(const std::string& format) const {
    std::string value = tmux("display-message -p " + shellQuoted(format));
    while (!value.empty() && value.back() == '\n') value.pop_back();
    return value;
  }
  // The process that the pane's shell started, or 0.
  int programProcess() const {
    const std::string shell = paneFormat("#{pane_pid}");
    std::ifstream children("/proc/" + shell + "/task/" + shell + "/children");
    int process = 0;
    children >> process;
    return process;
  }

 private:
  std::string folder_;
  std::string socket_;
  std::string errors_;
};

// Whether process `process` is gone (or only waits to be reaped).
bool processEnded(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/stat");
  std::string pid, name, state;
  return !(status >> pid >> name >> state) || state == "Z";
}

const std::string Prompt = "Verzögerung in hundertstel ms: 5000";

// The pane runs the demo, then tells how it ended and keeps the terminal's modes and what is
// typed or pasted afterwards in files of its folder. Without a display the demo chooses the
// terminal itself.
std::string demoCommand(const std::string& options = "--terminal") {
  return std::string("ulimit -c 0; env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM ") +
         RVTOOLS_KESSVIND + " " + options + " --log log; echo \"exit $?\"; stty -a > modes; " +
         "cat > typed";
}

bool waitForFileText(const std::string& path, const std::string& text) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    if (fileText(path).find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(50ms);
  }
  return false;
}

// The colour (SGR "38" foreground, "48" background) in effect where `text` starts on a screen
// captured with colours, as "r;g;b"; tmux writes a colour only where it changes.
std::string colourAt(const std::string& screen, const std::string& text, const char* layer) {
  const std::size_t position = screen.find(text);
  const std::string introducer = std::string("\x1B[") + layer + ";2;";
  const std::size_t start = screen.rfind(introducer, position);
  if (position == std::string::npos || start == std::string::npos) return {};
  const std::size_t values = start + introducer.size();
  return screen.substr(values, screen.find('m', values) - values);
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

bool hasWord(const std::string& text, const std::string& word) {
  std::istringstream words(text);
  return std::find(std::istream_iterator<std::string>(words), std::istream_iterator<std::string>(),
                   word) != std::istream_iterator<std::string>();
}

bool screenContains(const TmuxSession& session, const std::string& text) {
  return session.waitForScreen([&](const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      if (line.find(text) != std::string::npos) return true;
    }
    return false;
  });
}

// The pane's shell has the terminal as it was before the demo: main screen, cursor shown, no
// mouse or keypad modes, wrapping on, line editing and echo on, and no paste brackets (text
// pasted now reaches "cat" as it is).
void expectTerminalGivenBack(const TmuxSession& session, const std::string& exitLine) {
  ASSERT_TRUE(screenContains(session, exitLine));
  EXPECT_EQ(session.paneFormat("#{alternate_on} #{cursor_flag} #{mouse_any_flag} "
                               "#{mouse_sgr_flag} #{keypad_flag} #{wrap_flag}"),
            "0 1 0 0 0 1");
  ASSERT_TRUE(waitForFileText(session.folder() + "/modes", "icanon"));
  const std::string modes = fileText(session.folder() + "/modes");
  for (const char* mode : {"icanon", "echo", "isig", "icrnl", "opost"}) {
    EXPECT_TRUE(hasWord(modes, mode)) << mode;
  }
  session.tmux("set-buffer pasted \\; paste-buffer -p");
  session.sendKeys("Enter");
  ASSERT_TRUE(waitForFileText(session.folder() + "/typed", "pasted"));
  EXPECT_EQ(fileText(session.folder() + "/typed"), "pasted\n");
}

TEST(DemoInTmux, RunsToTheFullTubAndGivesTheTerminalBack) {
  TmuxSession session(demoCommand(), 80, 26);
  ASSERT_TRUE(session.waitForLine(3, Prompt));
  EXPECT_EQ(colourAt(joined(session.screen(true)), Prompt, "38"), "0;255;0");
  EXPECT_TRUE(session.screen()[25].ends_with("Ctrl+] menu"));
  // A smaller terminal shows what fits and says so; the whole window comes back with the size.
  session.tmux("resize-window -x 60 -y 20");
  EXPECT_TRUE(session.waitForLine(19, "Terminal 60 x 20, window 80 x 25: showing what fits."));
  session.tmux("resize-window -x 80 -y 26");
  EXPECT_TRUE(session.waitForLine(25, "Kessvind"));
  // A click on column 5, line 3 is one at the top left pixel of that cell.
  session.tmux("send-keys -l '\x1B[<0;5;3M\x1B[<0;5;3m'");
  EXPECT_TRUE(waitForFileText(session.folder() + "/log",
                              "t_MouseEventHandler: Graphic #0 window, X = 64, Y = 64\n"));

  session.sendKeys("C-] c");
  ASSERT_TRUE(session.waitForLine(25, "Copied the text of the screen."));
  EXPECT_NE(session.tmux("show-buffer").find(Prompt), std::string::npos);
  session.sendKeys("C-] s");
  ASSERT_TRUE(session.waitForLine(25, "Saved the picture as Kessvind.png."));
  EXPECT_TRUE(fileText(session.folder() + "/Kessvind.png").starts_with("\x89PNG\r\n\x1A\n"));

  session.sendKeys("BSpace BSpace BSpace BSpace 0 Enter");
  ASSERT_TRUE(session.waitForLine(24, "(Programm Ende)", 120s));
  ASSERT_TRUE(session.waitForLine(25, "The program has ended: press any key to leave."));
  EXPECT_NE(session.screen()[3].find("Bits in der Zolbe."), std::string::npos);
  // The closing text in red on black over the tub's floor, whose both halves are green.
  const std::string coloured = joined(session.screen(true));
  EXPECT_EQ(colourAt(coloured, "(Programm Ende)", "38"), "255;0;0");
  EXPECT_EQ(colourAt(coloured, "(Programm Ende)", "48"), "0;0;0");
  EXPECT_NE(coloured.find("(Programm Ende)\x1B[38;2;0;128;0m\x1B[48;2;0;128;0m▀▀"),
            std::string::npos);

  session.sendKeys("x");
  expectTerminalGivenBack(session, "exit 0");
  EXPECT_TRUE(fileText(session.folder() + "/log").ends_with("applicationWillTerminate: Called.\n"));
}

// A paste at the prompt is typed by the demo's paste handler; then the demo is left by the
// menu's Quit, a hang-up (as when an SSH connection drops) or a crash.
TEST(DemoInTmux, QuitHangUpOrCrashGivesTheTerminalBack) {
  struct Ending {
    int Signal;
    std::string ExitLine;
  };
  for (const Ending& ending : {Ending{0, "exit 0"}, {SIGHUP, "exit 129"}, {SIGSEGV, "exit 139"}}) {
    SCOPED_TRACE(ending.ExitLine);
    TmuxSession session(demoCommand(), 80, 26);
    ASSERT_TRUE(session.waitForLine(3, Prompt));
    session.sendKeys("BSpace");
    session.tmux("set-buffer 77 \\; paste-buffer -p");
    EXPECT_TRUE(session.waitForLine(3, "Verzögerung in hundertstel ms: 50077"));
    const int program = session.programProcess();
    ASSERT_GT(program, 0);
    if (ending.Signal == 0) {
      session.sendKeys("C-] q");
    } else {
      kill(program, ending.Signal);
    }
    expectTerminalGivenBack(session, ending.ExitLine);
  }
}

TEST(DemoInTmux, TheProgramEndsWithItsPane) {
  TmuxSession session(demoCommand(""), 80, 26);
  ASSERT_TRUE(session.waitForLine(3, Prompt));
  const int program = session.programProcess();
  ASSERT_GT(program, 0);
  session.tmux("kill-pane");
  bool ended = false;
  for (int attempt = 0; attempt < 100 && !ended; ++attempt) {
    std::this_thread::sleep_for(50ms);
    ended = processEnded(program);
  }
  EXPECT_TRUE(ended);
}

bool isQuadrantBlock(char32_t character) {
  return character >= U'\u2580' && character <= U'\u259F';
}

// The plot example (examples/plot.cpp) at 40 x 16: its axes and curve are pixel drawings, shown
// as quadrant blocks in the pen's colours; its title and labels stay text.
TEST(PlotInTmux, AxesAndCurveAsBlocksAndTheLabelsAsText) {
  TmuxSession session(std::string("env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM ") +
                          RVTOOLS_PLOT + " --terminal --log log",
                      40, 16);
  ASSERT_TRUE(session.waitForLine(14, "(Programm Ende)"));
  std::vector<std::u32string> lines;
  for (const std::string& line : session.screen()) lines.push_back(charactersOf(line));
  ASSERT_GE(lines.size(), 14u);
  EXPECT_EQ(lines[0], U"                y = sin x");
  EXPECT_TRUE(lines[1].starts_with(U"1 ")) << session.screen()[1];
  EXPECT_TRUE(lines[12].starts_with(U"-1 ")) << session.screen()[12];
  EXPECT_EQ(lines[13], U"  -2pi              0                2pi");
  // The x axis, pixel row 224, is the top row of line 8's cells: upper half blocks from column
  // 3 to the end, where the curve and the ticks cross it other quadrants.
  ASSERT_GE(lines[7].size(), 39u);
  for (std::size_t column = 2; column < 39; ++column) {
    EXPECT_TRUE(isQuadrantBlock(lines[7][column])) << "column " << column;
  }
  EXPECT_NE(lines[7].find(U"▀▀▀▀▀▀▀▀"), std::u32string::npos);
  // The y axis, pixel column 328, in the right half of column 21 on every line from 2 to 13;
  // the curve has blocks on each of those lines left and right of it.
  for (std::size_t line = 1; line <= 12; ++line) {
    SCOPED_TRACE("line " + std::to_string(line + 1));
    ASSERT_GT(lines[line].size(), 20u);
    EXPECT_TRUE(isQuadrantBlock(lines[line][20]));
    EXPECT_TRUE(std::any_of(lines[line].begin() + 2, lines[line].begin() + 20, isQuadrantBlock));
    EXPECT_TRUE(std::any_of(lines[line].begin() + 21, lines[line].end(), isQuadrantBlock));
  }
  // The axes in light grey, the curve in yellow, the labels in green, all on black.
  const std::string coloured = joined(session.screen(true));
  EXPECT_NE(coloured.find("\x1B[38;2;168;168;168m▀▀▀▀▀▀▀▀"), std::string::npos);
  EXPECT_NE(coloured.find("\x1B[38;2;255;255;0m▄▄▄"), std::string::npos);
  EXPECT_EQ(colourAt(coloured, "y = sin x", "38"), "0;255;0");
  EXPECT_EQ(colourAt(coloured, "2pi", "48"), "0;0;0");
}

// The music example where PortAudio finds no device (no sound card, no sound server): the tune
// takes its length in silence, the log says so once, and what ALSA and JACK say while PortAudio
// looks for a device reaches neither the screen nor the log.
TEST(MusicInTmux, WithoutADeviceTheTuneTakesItsTimeAndNothingIsSaid) {
  if (std::filesystem::exists("/dev/snd")) GTEST_SKIP() << "a sound card is here";
  const auto start = std::chrono::steady_clock::now();
  TmuxSession session(std::string("env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM ") +
                          RVTOOLS_MUSIC + " --terminal --log log",
                      40, 11);
  // 32 eighth notes at 180 quarters a minute: 5 1/3 seconds.
  ASSERT_TRUE(session.waitForLine(10, "The program has ended", 60s));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 5333ms);
  EXPECT_NE(session.screen()[7].find("The end."), std::string::npos);
  const std::string log = fileText(session.folder() + "/log");
  EXPECT_NE(log.find("\nt_Play: No audio output; the sound is silent.\n"), std::string::npos);
  for (const char* noise : {"ALSA", "jack", "Jack", "PortAudio"}) {
    EXPECT_EQ(log.find(noise), std::string::npos) << noise << " in the log:\n" << log;
  }
  for (const std::string& line : session.screen()) {
    EXPECT_EQ(line.find("ALSA"), std::string::npos) << line;
  }
}

}  // namespace
}  // namespace rvtools::terminal::test
