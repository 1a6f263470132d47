// Test helpers: a fresh runtime per test and screens rendered as strings.
#include "common.hpp"

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

void RuntimeTest::SetUp() {
  setHost(testHost());
  for (UInt8 n = 0; n < 8; ++n) testHost().setViewPresent(n, true);
  // The refresh thread stops and starts again as tests renew the memory; its own lines come
  // at moments no test controls, so they stay out of the captured log.
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

void RuntimeTest::TearDown() {
  setLogSink({});
}

std::vector<std::string> RuntimeTest::logLines() const {
  std::vector<std::string> lines;
  std::istringstream text(logText());
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::string RuntimeTest::logText() const {
  std::lock_guard lock(logMutex);
  return capturedLog;
}

void RuntimeTest::clearLog() {
  std::lock_guard lock(logMutex);
  capturedLog.clear();
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

}  // namespace rvtools::testing
