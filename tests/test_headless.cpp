// SPDX-License-Identifier: MIT
// Programs run without a display: the keys, clicks and menu choices runHeadless gives them from
// its command line, and the recording, picture and screen it leaves.
#include <gif_lib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "common.hpp"
#include "headless/run_options.hpp"

namespace rvtools::testing {
namespace {

std::vector<Int> keyNumbersOf(const std::string& text, std::string& error) {
  std::vector<Int> numbers;
  for (const KeyStroke& stroke : headless::keyStrokesOf(text, error)) {
    numbers.push_back(stroke.KeyNumber);
  }
  return numbers;
}

TEST(HeadlessKeysTest, NamedKeysEscapesAndCharactersBecomeKeyStrokes) {
  std::string error;
  EXPECT_EQ(keyNumbersOf("a{Left}{F12}\\r\\e\\x41\\{é", error),
            (std::vector<Int>{Key::A, Key::Left, Key::F12, Key::Return, Key::Escape, Key::A,
                              Key::LeftBracket, Key::Unknown}));
  EXPECT_EQ(error, "");
  const std::vector<KeyStroke> f1 = headless::keyStrokesOf("{F1}", error);
  EXPECT_EQ(f1[0].Characters, "\xEF\x9C\x84");  // U+F704
  EXPECT_EQ(f1[0].Flags, FunctionFlag);
  for (const std::string bad : {"{Nothing}", "{Left", "\\q", "\\x4", "😀"}) {
    error.clear();
    headless::keyStrokesOf(bad, error);
    EXPECT_NE(error, "") << bad;
  }
}

TEST(HeadlessKeysTest, WaitsPauseBetweenKeysAndTheSeedIsAWholeNumber) {
  std::string error;
  const std::vector<headless::KeyStep> steps =
      headless::keyStepsOf("a{wait 50}\\{wait 1}{Left}{wait 0}", error);
  EXPECT_EQ(error, "");
  ASSERT_EQ(steps.size(), 12u);
  EXPECT_EQ(std::get<KeyStroke>(steps[0]).KeyNumber, Key::A);
  EXPECT_EQ(std::get<headless::Pause>(steps[1]).Milliseconds, 50);
  EXPECT_EQ(std::get<KeyStroke>(steps[2]).Characters, "{");  // an escaped brace is typed
  EXPECT_EQ(std::get<KeyStroke>(steps[10]).KeyNumber, Key::Left);
  EXPECT_EQ(std::get<headless::Pause>(steps[11]).Milliseconds, 0);
  for (const std::string bad :
       {"{wait}", "{wait -1}", "{wait 5", "{wait x}", "{wait 5}{Nothing}"}) {
    error.clear();
    headless::keyStepsOf(bad, error);
    EXPECT_NE(error, "") << bad;
  }

  std::string arguments[] = {"probe", "--seed", "-7", "--keys", "x{wait 5}y", "--own"};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                  arguments[3].data(), arguments[4].data(), arguments[5].data()};
  const headless::RunOptions options = headless::parseRunOptions(6, argv);
  EXPECT_EQ(options.Error, "");
  EXPECT_EQ(options.Seed, Int{-7});
  ASSERT_EQ(options.Inputs.size(), 1u);
  EXPECT_EQ(std::get<std::vector<headless::KeyStep>>(options.Inputs[0]).size(), 3u);
  arguments[2] = "1e3";
  argv[2] = arguments[2].data();
  EXPECT_EQ(headless::parseRunOptions(3, argv).Error, "--seed takes a whole number");
}

class HeadlessRunTest : public ::testing::Test {
 protected:
  // Runs the probe with `arguments`, its log (standard output) kept in log.txt.
  CommandRun runProbe(const std::string& arguments) const {
    return runCommand(std::string(RVTOOLS_HEADLESS_PROBE) + " " + arguments + " > " +
                      path("log.txt"));
  }
  std::string file(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(path(name), std::ios::binary).rdbuf();
    return text.str();
  }
  std::string path(const std::string& name) const { return folder_.path(name); }

  TestFolder folder_{"rvtools-headless-"};
};

// Cell (0, 0) is the click's pixel; the window's border (4) is not part of the drawing area.
TEST_F(HeadlessRunTest, ScriptedInputsReachTheProgramAndItsScreenIsLeftInFiles) {
  const CommandRun run = runProbe(
      "--keys '{Backspace}cd{Left}X\\r' --keys '{F1}' --click 17,40 "
      "--menu 'Program Action' --screen " +
      path("screen.txt") + " --picture " + path("picture.png") + " --record " + path("film.gif"));
  ASSERT_EQ(run.Status, 0) << run.Errors;
  EXPECT_EQ(run.Errors, "");
  const std::string screen = file("screen.txt");
  EXPECT_EQ(screen.substr(0, screen.find("\n\n") + 1),
            ">acXd\nacXd 129\n17,40 Prog\n(Programm Ende)\n");
  EXPECT_NE(screen.find("\n\nC0 C0 C0"), std::string::npos);
  Int width = 0, height = 0;
  EXPECT_FALSE(readPng(path("picture.png"), &width, &height).empty());
  EXPECT_EQ(Position(width, height), Position(16 * 16, 4 * 32));
  const std::string film = file("film.gif");
  EXPECT_TRUE(film.starts_with("GIF89a") && film.ends_with(";")) << film.size() << " bytes";
  EXPECT_NE(file("log.txt").find("applicationWillTerminate: Called."), std::string::npos);
}

// The frames of a GIF file as giflib reads it whole; -1 when it cannot.
int gifFrames(const std::string& path) {
  int error = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &error);
  if (gif == nullptr) return -1;
  const int frames = DGifSlurp(gif) == GIF_OK ? gif->ImageCount : -1;
  DGifCloseFile(gif, &error);
  return frames;
}

// The probe waits for a line that never comes until the signal ends it, as Ctrl+C or a kill
// would; `env --default-signal` undoes the ignored SIGINT of a job the shell starts behind it.
TEST_F(HeadlessRunTest, AnInterruptionLeavesTheRecordingPictureAndScreenFinished) {
  for (const std::string signal : {"INT", "TERM"}) {
    const std::string files = " --screen " + path(signal + ".txt") + " --picture " +
                              path(signal + ".png") + " --record " + path(signal + ".gif");
    const CommandRun run =
        runCommand("env --default-signal=INT " + std::string(RVTOOLS_HEADLESS_PROBE) + files +
                   " > " + path("log.txt") + " & sleep 1; kill -s " + signal +
                   " $!; wait $!; echo $? > " + path("status"));
    ASSERT_EQ(run.Status, 0) << run.Errors;
    EXPECT_EQ(file("status"), signal == "INT" ? "130\n" : "143\n");
    EXPECT_GE(gifFrames(path(signal + ".gif")), 1) << signal;
    EXPECT_TRUE(file(signal + ".txt").starts_with(">ab")) << signal;
    EXPECT_FALSE(readPng(path(signal + ".png")).empty()) << signal;
  }
  for (const std::string& name : folder_.files()) {
    EXPECT_EQ(name.find(".partial"), std::string::npos) << name;
  }
}

TEST_F(HeadlessRunTest, ASeedGivesTheSameNumbersEveryRun) {
  std::string screens[3];
  const char* seeds[3] = {"42", "42", "43"};
  for (int run = 0; run < 3; ++run) {
    const std::string name = "screen" + std::to_string(run) + ".txt";
    const CommandRun probe =
        runProbe(std::string("--numbers --seed ") + seeds[run] + " --screen " + path(name));
    ASSERT_EQ(probe.Status, 0) << probe.Errors;
    screens[run] = file(name);
  }
  EXPECT_FALSE(screens[0].empty());
  EXPECT_EQ(screens[0], screens[1]);
  EXPECT_NE(screens[0], screens[2]);
}

TEST_F(HeadlessRunTest, ACommandLineItCannotFollowStopsBeforeTheProgram) {
  for (const auto& [arguments, error] :
       {std::pair{"--keys '{Nothing}'", "runHeadless: no key named {Nothing}\n"},
        std::pair{"--click 3", "runHeadless: --click takes x,y\n"}}) {
    const CommandRun run = runProbe(arguments);
    EXPECT_NE(run.Status, 0) << arguments;
    EXPECT_EQ(run.Errors, error);
    EXPECT_EQ(file("log.txt"), "") << arguments;
  }
}

}  // namespace
}  // namespace rvtools::testing
