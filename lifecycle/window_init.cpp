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
#include <optional>
#include <thread>

#include "runtime/arithmetic.hpp"
#include "runtime/checks.hpp"
#include "runtime/log.hpp"
#include "runtime/picture_versions.hpp"
#include "runtime/pixel_drawings.hpp"
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
// A side outside SmallestSide..LargestPictureSide gives way to the fallback size.
constexpr Int SmallestSide = 32;
constexpr Int FallbackWidth = 1280;
constexpr Int FallbackHeight = 800;
// What a new window starts with: the refresh rate in frames a second, the text colour
// (foreground colour 12 in the high nibble, background 0 in the low one), and the palette
// colours of the drawing colour and the border.
constexpr Int DefaultRefreshRate = 30;
constexpr UInt8 DefaultTextColor = 192;
constexpr Int DefaultDrawingColor = 0;
constexpr Int DefaultBorderColor = 5;

// A window's picture size and depth once corrected, and the bytes that its blocks take.
struct Geometry {
  Int width = 0;
  Int height = 0;
  Int depth = 0;
  Int pictureBytes = 0;
  Int columns = -1;  // -1 for a window without text
  Int lines = -1;
  Int textBytes = 0;
};

// The frame around the picture: the border on each side and the height of the title bar.
struct Frame {
  Int borderWidth = 0;
  Int borderHeight = 0;
  Int titleHeight = 0;
};

// The inclusive address ranges of a window's blocks; -1 for a text block that is not there.
struct Blocks {
  Int memoryStart = -1;
  Int memoryEnd = -1;
  Int textStart = -1;
  Int textEnd = -1;
};

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
  for (UInt8 i = 0; i < GraphicWindowCount; ++i) {
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

// Creates the video memory or waits until it is there, makes the window the default one when
// there is none yet, and starts the refresh.
void prepareRuntime(UInt8 window) {
  waitForMemory();
  if (DefaultWindow >= NoWindow) DefaultWindow = window;
  startRefreshIfStopped();
}

Int correctedSide(const std::string& p, Int side, Int fallback, const char* direction) {
  if (side >= SmallestSide && side <= LargestPictureSide) return side;
  logLine(p, " cannot display ", side, " ", direction, " pixel.");
  return fallback;
}

// The two roundings differ on purpose: depth 4 rounds to the nearer multiple of 4 (4k+2 goes
// down), depth 1 always rounds up to a multiple of 8.
Int roundedWidth(const std::string& p, Int width, Int depth) {
  if (depth == 4 && width % 4 != 0) {
    logLine(p, " width with 4 bit depth must be a multiple of 4.");
    return ((width + 1) / 4) * 4;
  }
  if (depth == 1 && width % 8 != 0) {
    logLine(p, " width with 1 bit depth must be a multiple of 8.");
    return ((width + 7) / 8) * 8;
  }
  return width;
}

// The size, depth and block sizes of the window; nothing for a depth the runtime cannot draw.
// Each correction logs its line.
std::optional<Geometry> correctedGeometry(const std::string& p, Int depth, Int width, Int height,
                                          const t_Font& font) {
  Geometry geometry;
  geometry.width = correctedSide(p, width, FallbackWidth, "horizontal");
  geometry.height = correctedSide(p, height, FallbackHeight, "vertical");
  if (!isSupportedDepth(depth)) {
    logLine(p, " unsupported ", depth, " bit depth.");
    return std::nullopt;
  }
  geometry.depth = depth;
  geometry.width = roundedWidth(p, geometry.width, depth);
  geometry.pictureBytes = pictureByteCount(geometry.width, geometry.height, depth);
  if (!font.Data.empty()) {
    geometry.columns = font.Width == 0 ? 0 : geometry.width / font.Width;
    geometry.lines = font.Height == 0 ? 0 : geometry.height / font.Height;
    geometry.textBytes = geometry.columns * geometry.lines * 2;
  }
  return geometry;
}

// Whether the free memory holds each block, checked on its own; logs why not.
bool fitsInMemory(const std::string& p, const Geometry& geometry) {
  const Int available = HighMemory - ReservedLowMemory;
  if (available < geometry.pictureBytes) {
    logLine(p, " has not enough graphic-video-memory (", available / 1024, "K available).");
    logLine("t_InitWindow: Displaying ", geometry.width, " x ", geometry.height, " pixel x ",
            geometry.depth, " bit needs ", kilobyteText(geometry.pictureBytes), "K video-memory.");
    return false;
  }
  if (available < geometry.textBytes) {
    logLine(p, " has not enough text-video-memory (", available / 1024, "K available).");
    logLine("t_InitWindow: Displaying ", geometry.width, " x ", geometry.height,
            " characters needs ", kilobyteText(geometry.textBytes), "K text-video-memory.");
    return false;
  }
  return true;
}

// Hides the title bar if asked to, and gives a negative border the rest of the screen.
Frame prepareFrame(UInt8 window, const std::string& p, const Geometry& geometry, bool titleVisible,
                   Int borderWidth, Int borderHeight) {
  if (!titleVisible) {
    t_WindowTitleVisible(window, false);
    logLine(p, " title will be invisible.");
  }
  if (borderWidth < 0 || borderHeight < 0) {
    const ScreenSize screen = t_WindowInfo(window).Screen;
    if (borderWidth < 0) borderWidth = screen.Width - geometry.width;
    if (borderHeight < 0) borderHeight = screen.Height - geometry.height;
  }
  return {borderWidth, borderHeight, titleVisible ? TitleBarDelta.load() : 0};
}

// Takes the graphic block and, for a window with text, the text block below it.
Blocks carveBlocks(const std::string& p, const Geometry& geometry) {
  Blocks blocks;
  blocks.memoryEnd = HighMemory;
  blocks.memoryStart = allocateBlock(geometry.pictureBytes);
  logLine(p, " = ", geometry.width, " x ", geometry.height, " pixel x ", geometry.depth,
          " bit = ", kilobyteText(geometry.pictureBytes), "K video-memory = $",
          HexText(blocks.memoryStart), ".");
  if (geometry.textBytes > 0) {
    blocks.textEnd = HighMemory;
    blocks.textStart = allocateBlock(geometry.textBytes);
  }
  return blocks;
}

void fillPictureFields(t_Window& record, const Geometry& geometry, const Frame& frame,
                       bool autoUpdate) {
  record.UpdateStarted = 0;
  record.UpdateFinished = 0;
  record.VerticalBlank = true;
  record.IgnoreEvents = false;
  record.RefreshRate = DefaultRefreshRate;
  record.AutoUpdate = autoUpdate;
  record.QuickUpdate = true;
  record.ScrollLock = false;
  record.BitDepth = geometry.depth;
  record.Width = geometry.width;
  record.Height = geometry.height;
  record.BorderWidth = frame.borderWidth;
  record.BorderHeight = frame.borderHeight;
  record.TitleHeight = frame.titleHeight;
  record.RGBColor = PaletteColor(DefaultDrawingColor);
  record.RGBColorBorder = PaletteColor(DefaultBorderColor);
  record.DrawingMode = 0;
  record.PositionX = 0;
  record.PositionY = 0;
}

// The text area is the whole window, the cursor at its first cell; text positions count from 1.
void fillTextFields(t_Window& record, const Geometry& geometry) {
  record.TextWidth = geometry.columns;
  record.TextHeight = geometry.lines;
  record.TextFirstColumn = 1;
  record.TextLastColumn = geometry.columns;
  record.TextFirstLine = 1;
  record.TextLastLine = geometry.lines;
  record.TextHpos = 1;
  record.TextVpos = 1;
  record.TextColor = DefaultTextColor;
  record.LoResOffsetX = 0;
  record.LoResOffsetY = 0;
  record.LoResMode = 0;
}

void fillRecord(t_Window& record, const Geometry& geometry, const Frame& frame,
                const Blocks& blocks, bool autoUpdate) {
  fillPictureFields(record, geometry, frame, autoUpdate);
  record.MemoryStart = blocks.memoryStart;
  record.MemoryEnd = blocks.memoryEnd;
  fillTextFields(record, geometry);
  record.TextMemoryStart = blocks.textStart;
  record.TextMemoryEnd = blocks.textEnd;
}

// Binds the window to its view and shows it there: a cleared picture with the first pen and no
// pixel drawings, its title, its size and its border colour. Without a view the window stays
// uninitialised and keeps its new blocks.
void showOnView(UInt8 window, const std::string& p, t_Window& record, const t_Font& font) {
  const PlatformHandle view = host().viewHandle(window);
  if (view == nullptr) {
    record.Initialized = false;
    record.Font = EmptyFont();
    logLine(p, " could not be initialized, resource undefined.");
    return;
  }
  record.Initialized = true;
  record.View = view;
  record.Window = host().windowHandle(window);
  record.Font = font;
  clearPicture(record);
  resetPixelDrawings(window, record.TextWidth, record.TextHeight);
  markPictureChanged(window);
  t_WindowTitle(window, windowTitle(record.TextMemoryStart >= 0));
  t_WindowSize(window, -1, -1, record.Width, record.Height);
  t_ColorBorder(window, DefaultBorderColor);
}

}  // namespace

void t_InitWindow(UInt8 window, Int bitDepth, bool autoUpdate, Int width, Int height,
                  Int borderWidth, Int borderHeight, const t_Font& font, bool titleVisible) {
  if (window >= GraphicWindowCount) {
    logLine("t_InitWindow: Window is not a graphic window.");
    return;
  }
  const std::string p = prefix(window);
  logLine(p, " Start.");
  prepareRuntime(window);
  t_Window& record = Windows[window];
  if (record.Initialized) deleteOldBlocks(window, record);
  const std::optional<Geometry> geometry = correctedGeometry(p, bitDepth, width, height, font);
  if (!geometry || !fitsInMemory(p, *geometry)) return;
  const Frame frame = prepareFrame(window, p, *geometry, titleVisible, borderWidth, borderHeight);
  const Blocks blocks = carveBlocks(p, *geometry);
  fillRecord(record, *geometry, frame, blocks, autoUpdate);
  showOnView(window, p, record, font);
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
