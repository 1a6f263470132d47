// SPDX-License-Identifier: MIT
// Test helpers: a fresh runtime per test, screens rendered as strings, folders, PNG files, a full
// disk and shell commands with their standard error.
#include "common.hpp"

#include <png.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <sstream>

#include "runtime/log.hpp"

namespace rvtools::testing {
namespace {

std::mutex logMutex;
std::string capturedLog;

}  // namespace

HeadlessHost& testHost() {
  static auto* host = new HeadlessHost;
  return *host;
}

void startFreshRuntime(Host& host) {
  setHost(host);
  setLogSink([](std::string_view text) {
    if (text.starts_with("t_WindowAutoUpdateProcess: ")) return;
    std::lock_guard lock(logMutex);
    capturedLog += text;
  });
  if (!ToolsInitialized) initrvtools();
  MemoryInitStarted = false;
  MemoryInitialized = false;
  DefaultWindow = 255;
  EventQueue.clear();
  MouseEventQueue.clear();
  MenuEventQueue.clear();
  t_InitMemory();
  clearLog();
}

Lines logLines() {
  Lines lines;
  std::istringstream text(logText());
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::string logText() {
  std::lock_guard lock(logMutex);
  return capturedLog;
}

void clearLog() {
  std::lock_guard lock(logMutex);
  capturedLog.clear();
}

void RuntimeTest::SetUp() {
  for (UInt8 n = 0; n < 8; ++n) testHost().setViewPresent(n, true);
  startFreshRuntime(testHost());
}

void RuntimeTest::TearDown() {
  setLogSink({});
}

void RuntimeTest::initTextWindow(UInt8 window, Int depth, Int columns, Int lines) {
  const t_Font font = t_LoadFontResource("MenloBold 16x32.font");
  ASSERT_FALSE(font.Data.empty());
  t_InitWindow(window, depth, false, font.Width * columns, font.Height * lines, 0, 0, font, true);
  ASSERT_TRUE(Windows[window].Initialized);
  clearLog();
}

std::string screenText(UInt8 window) {
  const t_Window& record = Windows[window];
  std::string text;
  for (Int line = 0; line < record.TextHeight; ++line) {
    for (Int column = 0; column < record.TextWidth; ++column) {
      const UInt8 code = VideoMemory[record.TextMemoryStart + column + line * record.TextWidth];
      text += code >= 32 && code <= 126 ? static_cast<char>(code) : '.';
    }
    text += '\n';
  }
  return text;
}

std::string screenColors(UInt8 window) {
  const t_Window& record = Windows[window];
  const Int half = (record.TextMemoryEnd - record.TextMemoryStart + 1) / 2;
  static const char digits[] = "0123456789ABCDEF";
  std::string text;
  for (Int line = 0; line < record.TextHeight; ++line) {
    for (Int column = 0; column < record.TextWidth; ++column) {
      const UInt8 color =
          VideoMemory[record.TextMemoryStart + half + column + line * record.TextWidth];
      if (column > 0) text += ' ';
      text += digits[color >> 4];
      text += digits[color & 15];
    }
    text += '\n';
  }
  return text;
}

std::vector<UInt8> pictureBytes(UInt8 window) {
  const t_Window& record = Windows[window];
  return {VideoMemory.begin() + record.MemoryStart, VideoMemory.begin() + record.MemoryEnd + 1};
}

Position cursorOf(UInt8 window) {
  return {Windows[window].TextHpos, Windows[window].TextVpos};
}

t_Event keyEvent(Int value) {
  t_Event event;
  event.Kind = 1;
  event.Value = value;
  return event;
}

TestFolder::TestFolder(const std::string& prefix) {
  const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  // The process number keeps apart runs of the same test from two builds at once.
  folder_ = std::filesystem::path(::testing::TempDir()) /
            (prefix + test + "-" + std::to_string(getpid()));
  std::filesystem::remove_all(folder_);
  std::filesystem::create_directories(folder_);
}

TestFolder::~TestFolder() {
  std::filesystem::remove_all(folder_);
}

std::vector<std::string> TestFolder::files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

std::vector<UInt8> readPng(const std::string& path, Int* width, Int* height) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
  image.format = PNG_FORMAT_ARGB;
  std::vector<UInt8> pixels(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) return {};
  if (width != nullptr) *width = image.width;
  if (height != nullptr) *height = image.height;
  return pixels;
}

void withFileSizeLimit(std::size_t bytes, const std::function<void()>& work) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{bytes, limit.rlim_max};
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  work();
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, previous);
}

CommandRun runCommand(const std::string& command) {
  std::string path =
      (std::filesystem::path(::testing::TempDir()) / "rvtools-errors-XXXXXX").string();
  const int file = mkstemp(path.data());
  if (file < 0) return {-1, "cannot create a file for the standard error of: " + command};
  close(file);
  CommandRun run{std::system(("( " + command + " ) 2> '" + path + "'").c_str()), {}};
  std::ostringstream errors;
  errors << std::ifstream(path, std::ios::binary).rdbuf();
  run.Errors = errors.str();
  std::filesystem::remove(path);
  return run;
}

}  // namespace rvtools::testing
