// SPDX-License-Identifier: MIT
// Video memory and window initialisation: t_InitWindow checks and corrects a window's size and
// depth, carves a graphic block and a text block out of the video memory (downward from
// HighMemory), fills the window record, clears the picture and titles the platform window.
// Re-initialising a window deletes its old blocks and moves every block below them upward, so
// that the free memory stays in one piece.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <thread>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "runtime/threads.hpp"
#include "runtime/utilities.hpp"
#include "rvtools/display.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"

namespace rvtools {
namespace {

// Block starts are aligned by this mask; it clears bits 0 to 9 and also bit 11, so a block may
// be up to 3 K larger than asked for.
constexpr Int BlockAlignmentMask = 0xFFFFF400;
// The lowest 64 K are never handed to a window.
constexpr Int ReservedLowMemory = 0x10000;
constexpr Int SmallestSide = 32;
constexpr Int LargestSide = 8192;

std::string prefix(UInt8 window) {
  return "t_InitWindow: GraphicWindow #" + std::to_string(window);
}

// Copies a block upward by delta bytes, its top byte first, so that no byte is overwritten
// before it has been read.
void moveBlockUp(Int start, Int end, Int delta) {
  std::memmove(VideoMemory.data() + start + delta, VideoMemory.data() + start,
               static_cast<size_t>(end - start + 1));
}

// Deletes the window's old blocks and moves every block that lies below them up into the gap.
void deleteOldBlocks(UInt8 window, t_Window& record) {
  const std::string p = prefix(window);
  record.Initialized = false;
  const Int oldEnd = record.MemoryEnd;
  Int delta = oldEnd - record.MemoryStart + 1;
  logLine(p, " high memory = $", HexText(oldEnd), ", graphic block size to delete = $",
          HexText(delta), ".");
  if (record.TextMemoryStart >= 0) {
    const Int textSize = record.TextMemoryEnd - record.TextMemoryStart + 1;
    logLine(p, " high memory = $", HexText(oldEnd), ", text block size to delete = $",
            HexText(textSize), ".");
    delta += textSize;
  }
  for (UInt8 i = 0; i < 8; ++i) {
    t_Window& other = Windows[i];
    if (!other.Initialized || other.MemoryStart >= oldEnd) continue;
    const Int start = other.MemoryStart, end = other.MemoryEnd;
    logPiece(p, " moving graphic block for win #", i);
    logPiece("$", HexText(start), "...", HexText(end), " to");
    logLine(HexText(start + delta), "...", HexText(end + delta));
    moveBlockUp(start, end, delta);
    if (other.TextMemoryStart >= 0 && other.TextMemoryStart < oldEnd) {
      const Int textStart = other.TextMemoryStart, textEnd = other.TextMemoryEnd;
      logPiece(p, " moving text block for win #", i);
      logPiece("$", HexText(textStart), "...", HexText(textEnd), " to");
      logLine("$", HexText(textStart + delta), "...", HexText(textEnd + delta));
      moveBlockUp(textStart, textEnd, delta);
    }
    if (other.TextMemoryStart >= 0) {
      other.TextMemoryStart += delta;
      other.TextMemoryEnd += delta;
    }
    other.MemoryStart += delta;
    other.MemoryEnd += delta;
    markPictureChanged(i);
  }
  HighMemory += delta;
}

// Takes a block of `size` bytes below HighMemory; returns its start.
Int allocateBlock(Int size) {
  const Int end = HighMemory;
  const Int start = (end - size + 1) & BlockAlignmentMask;
  HighMemory = start - 1;
  return start;
}

void clearPicture(const t_Window& record) {
  UInt8* first = VideoMemory.data() + record.MemoryStart;
  const Int bytes = pictureByteCount(record.Width, record.Height, record.BitDepth);
  if (record.BitDepth != 32) {
    std::memset(first, 0, static_cast<size_t>(bytes));
    return;
  }
  for (Int i = 0; i < bytes; i += 4) {
    first[i] = 255;
    first[i + 1] = first[i + 2] = first[i + 3] = 0;
  }
}

std::string lastPathComponent(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  if (const auto slash = path.rfind('/'); slash != std::string::npos) path.erase(0, slash + 1);
  return path;
}

bool isAppEnding(std::string ending) {
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ending == ".app";
}

// The window title: the bundle's name without ".app", with "-Grafik" for a window without
// text. A bundle name without ".app" is used whole and never gets "-Grafik".
std::string windowTitle(bool hasText) {
  const std::string name = lastPathComponent(host().bundlePath());
  const bool longName = characterCount(name) >= 5;
  if (!isAppEnding(longName ? name.substr(name.size() - 4) : name)) return name;
  std::string title = longName ? name.substr(0, name.size() - 4) : std::string();
  if (!hasText) title += "-Grafik";
  return title;
}

void waitForMemory() {
  if (!MemoryInitStarted) {
    t_InitMemory();
    return;
  }
  while (!MemoryInitialized) sleepFor(0, 10000000);
}

void startRefreshIfStopped() {
  if (AutoUpdateRunning) return;
  // Set here already so that two quick initialisations start one loop only.
  AutoUpdateRunning = true;
  std::thread(t_WindowAutoUpdateProcess).detach();
}

}  // namespace

void t_InitWindow(UInt8 window, Int bitDepth, bool autoUpdate, Int width, Int height,
                  Int borderWidth, Int borderHeight, const t_Font& font, bool titleVisible) {
  if (window >= 8) {
    logLine("t_InitWindow: Window is not a graphic window.");
    return;
  }
  const std::string p = prefix(window);
  logLine(p, " Start.");
  waitForMemory();
  if (DefaultWindow >= 255) DefaultWindow = window;
  startRefreshIfStopped();
  t_Window& record = Windows[window];
  if (record.Initialized) deleteOldBlocks(window, record);
  const Int available = HighMemory - ReservedLowMemory;

  if (width < SmallestSide || width > LargestSide) {
    logLine(p, " cannot display ", width, " horizontal pixel.");
    width = 1280;
  }
  if (height < SmallestSide || height > LargestSide) {
    logLine(p, " cannot display ", height, " vertical pixel.");
    height = 800;
  }
  if (!isSupportedDepth(bitDepth)) {
    logLine(p, " unsupported ", bitDepth, " bit depth.");
    return;
  }
  // The two roundings differ on purpose: depth 4 rounds to the nearer multiple of 4 (4k+2
  // goes down), depth 1 always rounds up to a multiple of 8.
  if (bitDepth == 4 && width % 4 != 0) {
    logLine(p, " width with 4 bit depth must be a multiple of 4.");
    width = ((width + 1) / 4) * 4;
  }
  if (bitDepth == 1 && width % 8 != 0) {
    logLine(p, " width with 1 bit depth must be a multiple of 8.");
    width = ((width + 7) / 8) * 8;
  }

  const Int pictureBytes = pictureByteCount(width, height, bitDepth);
  if (available < pictureBytes) {
    logLine(p, " has not enough graphic-video-memory (", available / 1024, "K available).");
    logLine("t_InitWindow: Displaying ", width, " x ", height, " pixel x ", bitDepth, " bit needs ",
            kilobyteText(pictureBytes), "K video-memory.");
    return;
  }
  Int columns = -1, lines = -1, textBytes = 0;
  if (!font.Data.empty()) {
    columns = font.Width == 0 ? 0 : width / font.Width;
    lines = font.Height == 0 ? 0 : height / font.Height;
    textBytes = columns * lines * 2;
    // Each block is checked against the same available figure, on its own.
    if (available < textBytes) {
      logLine(p, " has not enough text-video-memory (", available / 1024, "K available).");
      logLine("t_InitWindow: Displaying ", width, " x ", height, " characters needs ",
              kilobyteText(textBytes), "K text-video-memory.");
      return;
    }
  }
  if (!titleVisible) {
    t_WindowTitleVisible(window, false);
    logLine(p, " title will be invisible.");
  }
  if (borderWidth < 0 || borderHeight < 0) {
    const ScreenSize screen = t_WindowInfo(window).Screen;
    if (borderWidth < 0) borderWidth = screen.Width - width;
    if (borderHeight < 0) borderHeight = screen.Height - height;
  }

  record.UpdateStarted = 0;
  record.UpdateFinished = 0;
  record.VerticalBlank = true;
  record.IgnoreEvents = false;
  record.RefreshRate = 30;
  record.AutoUpdate = autoUpdate;
  record.QuickUpdate = true;
  record.ScrollLock = false;
  record.BitDepth = bitDepth;
  record.Width = width;
  record.Height = height;
  record.BorderWidth = borderWidth;
  record.BorderHeight = borderHeight;
  record.TitleHeight = titleVisible ? TitleBarDelta.load() : 0;
  record.RGBColor = PaletteColor(0);
  record.RGBColorBorder = PaletteColor(5);
  record.DrawingMode = 0;
  record.PositionX = 0;
  record.PositionY = 0;

  record.MemoryEnd = HighMemory;
  record.MemoryStart = allocateBlock(pictureBytes);
  logLine(p, " = ", width, " x ", height, " pixel x ", bitDepth,
          " bit = ", kilobyteText(pictureBytes), "K video-memory = $", HexText(record.MemoryStart),
          ".");

  record.TextWidth = columns;
  record.TextHeight = lines;
  record.TextFirstColumn = 1;
  record.TextLastColumn = columns;
  record.TextFirstLine = 1;
  record.TextLastLine = lines;
  record.TextHpos = 1;
  record.TextVpos = 1;
  record.TextColor = 192;
  record.LoResOffsetX = 0;
  record.LoResOffsetY = 0;
  record.LoResMode = 0;
  if (textBytes > 0) {
    record.TextMemoryEnd = HighMemory;
    record.TextMemoryStart = allocateBlock(textBytes);
  } else {
    record.TextMemoryStart = -1;
    record.TextMemoryEnd = -1;
  }

  const PlatformHandle view = host().viewHandle(window);
  if (view == nullptr) {
    record.Initialized = false;
    record.Font = EmptyFont();
    logLine(p, " could not be initialized, resource undefined.");
    logLine(p, " End.");
    return;
  }
  record.Initialized = true;
  record.View = view;
  record.Window = host().windowHandle(window);
  record.Font = font;
  clearPicture(record);
  markPictureChanged(window);
  t_WindowTitle(window, windowTitle(record.TextMemoryStart >= 0));
  t_WindowSize(window, -1, -1, width, height);
  t_ColorBorder(window, 5);
  logLine(p, " End.");
}

void t_InitWindow(UInt8 window, Int bitDepth, Int columns, Int lines, Int border,
                  const std::string& fontFileName) {
  waitForMemory();
  const t_Font font = t_LoadFontResource(fontFileName);
  if (font.Data.empty()) {
    logLine("t_InitWindow: Font '", fontFileName, "' not found.");
    return;
  }
  t_InitWindow(window, bitDepth, true, saturatingProduct(font.Width, columns),
               saturatingProduct(font.Height, lines), border, border, font, true);
}

}  // namespace rvtools
