// SPDX-License-Identifier: MIT
// libFuzzer target for the operations a program calls: random sequences of them on windows of
// every depth with hostile arguments (the ends of the Int range, window numbers 0..255, long and
// invalid UTF-8 texts, fonts of any cell size) and hostile values in the record fields a program
// may write. Nothing may crash, access memory out of bounds or overflow (AddressSanitizer and
// UndefinedBehaviorSanitizer) or take longer than -timeout (work not bounded by the window's
// cells), and each call may change video memory only inside its own window's blocks. Every input
// starts afresh: windows 0..7 set up by its first bytes, empty queues, menus and text windows;
// calls that wait for keys find them queued, followed by Returns.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "input/menus.hpp"
#include "rvtools/headless.hpp"
#include "rvtools/host.hpp"
#include "rvtools/rvtools.hpp"

namespace {

using namespace rvtools;
using In = FuzzedDataProvider;

constexpr Int Smallest = std::numeric_limits<Int>::min();
constexpr Int Largest = std::numeric_limits<Int>::max();
constexpr int OperationsPerInput = 64;
// The pixels of the windows that an input's operations address, summed, before it stops: a call may
// take time in proportion to its window, and an input stays well inside -timeout.
constexpr Int PixelsPerInput = 16 << 20;
constexpr Int ReservedLowMemory = 0x10000;
// Bytes below the lowest block that every call must leave alone, besides the reserved 64 K.
constexpr Int GuardBelowBlocks = 0x10000;
// Larger windows are left out of the check of untouched memory, which would slow the fuzzing.
constexpr Int LargestCheckedRegion = 4 << 20;
constexpr Int Depths[] = {1, 4, 8, 16, 24, 32};

// The headless host, except that views compose their pictures only when the fuzzing thread asks;
// the refresh thread's requests are dropped, so that all work happens on that thread.
class FuzzHost : public HeadlessHost {
 public:
  void displayView(UInt8 window, bool deferred) override {
    if (std::this_thread::get_id() == fuzzingThread_) HeadlessHost::displayView(window, deferred);
  }

 private:
  std::thread::id fuzzingThread_ = std::this_thread::get_id();
};

FuzzHost& fuzzHost() {
  static auto* host = new FuzzHost;
  return *host;
}

// Hostile values.
Int hostileInt(In& in) {
  static constexpr Int Edges[] = {Smallest,     Smallest + 1,    Largest,      Largest - 1,
                                  Int{1} << 40, -(Int{1} << 40), Int{1} << 31, -(Int{1} << 31),
                                  Int{1} << 32, Int{1} << 62,    8191,         8192,
                                  8193,         65535,           0x1000000,    -8192};
  static constexpr Int Ranges[][2] = {{-3, 12}, {-40, 300}, {-40, 300}, {}, {}, {0, 2}};
  const int kind = in.ConsumeIntegralInRange<int>(0, 5);
  if (kind == 3) return in.PickValueInArray(Edges);
  if (kind == 4) return in.ConsumeIntegral<Int>();
  return in.ConsumeIntegralInRange<Int>(Ranges[kind][0], Ranges[kind][1]);
}

// A key code: mostly one of the key handler's table, sometimes any number.
Int keyCode(In& in) {
  return in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 130) : hostileInt(in);
}

// Mostly 0..8, sometimes any number 0..255.
UInt8 windowNumber(In& in) {
  const auto choice = in.ConsumeIntegral<UInt8>();
  return choice < 200 ? choice % 9 : in.ConsumeIntegral<UInt8>();
}

// A text of any bytes, invalid UTF-8 included; now and then thousands of bytes long.
std::string hostileText(In& in) {
  std::string text = in.ConsumeBytesAsString(in.ConsumeIntegralInRange<std::size_t>(0, 24));
  if (!text.empty() && in.ConsumeIntegralInRange<int>(0, 15) == 0) {
    while (text.size() < 4000) text += text;
  }
  return text;
}

double hostileDouble(In& in) {
  constexpr double Infinity = std::numeric_limits<double>::infinity(), Power63 = 0x1p63;
  constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
  static constexpr double Edges[] = {NaN,    Infinity, -Infinity, 1e300,
                                     -1e300, Power63,  -Power63,  -0.5};
  if (in.ConsumeBool()) return in.PickValueInArray(Edges);
  return static_cast<double>(in.ConsumeIntegralInRange<int>(-50, 1400)) +
         in.ConsumeProbability<double>();
}

Int depth(In& in) {
  return in.ConsumeIntegralInRange<int>(0, 7) == 0 ? hostileInt(in) : in.PickValueInArray(Depths);
}

// Fonts: the two of the bundle, small and short ones made here (glyphs beyond 99 missing; not
// grey, so that every glyph is refused), and cell sizes of no real font. No cell is smaller than
// 8 x 8, so that a whole screen stays a few thousand cells.

t_Font madeFont(Int format, Int width, Int height, std::size_t glyphs, std::size_t bytesEach) {
  t_Font font;
  font.Format = format;
  font.Start = 0;
  font.End = 255;
  font.Width = width;
  font.Height = height;
  std::vector<UInt8> data(glyphs * bytesEach);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<UInt8>(i * 37);
  font.Data = SharedBytes(std::move(data));
  return font;
}

const std::vector<t_Font>& fonts() {
  static const auto* all = new std::vector<t_Font>{t_LoadFontResource("MenloBold 16x32.font"),
                                                   t_LoadFontResource("MenloRegular 16x32.font"),
                                                   madeFont(2, 8, 8, 256, 64),
                                                   madeFont(2, 8, 16, 100, 128),
                                                   madeFont(0, 8, 8, 256, 64),
                                                   madeFont(2, 0, 0, 4, 16),
                                                   madeFont(2, -8, -8, 4, 16),
                                                   madeFont(2, Largest, 16, 4, 16),
                                                   madeFont(2, 16, Smallest, 4, 16),
                                                   EmptyFont()};
  return *all;
}

const t_Font& font(In& in) {
  return fonts()[in.ConsumeIntegralInRange<std::size_t>(0, fonts().size() - 1)];
}

std::string fontName(In& in) {
  static constexpr const char* Names[] = {"MenloBold 16x32.font", "MenloRegular 16x32.font",
                                          "missing.font"};
  return in.ConsumeIntegralInRange<int>(0, 3) < 3 ? in.PickValueInArray(Names) : hostileText(in);
}

// The lowest address that the input's windows have taken, from where the next input makes the video
// memory as new.
Int lowestBlockSeen = TopOfVideoMemory + 1;

void noteBlocks() {
  lowestBlockSeen = std::min(lowestBlockSeen, HighMemory + 1);
}

// Windows 0..7 as the input's first byte of each says: a depth (or none), a size and a font.
void setUpWindows(In& in) {
  static constexpr std::array<std::pair<Int, Int>, 4> Sizes{
      {{32, 32}, {64, 64}, {128, 96}, {160, 128}}};
  for (UInt8 n = 0; n < 8; ++n) {
    const auto choice = in.ConsumeIntegral<UInt8>();
    if (choice % 8 >= 6) continue;
    const auto [width, height] = Sizes[(choice >> 3) % 4];
    const t_Font& chosen = fonts()[(choice >> 5) % 4 == 3 ? 9 : (choice >> 5) % 4];
    t_InitWindow(n, Depths[choice % 8], false, width, height, choice & 1, 0, chosen, true);
    t_WindowVisible(n, true);
  }
  noteBlocks();
}

void startAfresh(In& in) {
  std::fill(VideoMemory.begin() + lowestBlockSeen, VideoMemory.begin() + TopOfVideoMemory + 1,
            UInt8{0xFF});
  lowestBlockSeen = TopOfVideoMemory + 1;
  for (t_Window& record : Windows) record = t_Window{};
  HighMemory = TopOfVideoMemory;
  DefaultWindow = 255;
  EventQueue.clear();
  MouseEventQueue.clear();
  MenuEventQueue.clear();
  fuzzHost().setMenus(MenuSet::desktopMenus());
  buildMenuActions();
  for (UInt8 window :
       {PasteboardWindowNumber, VirtualPrinterWindowNumber, SystemConsoleWindowNumber}) {
    fuzzHost().setTextViewPresent(window, in.ConsumeIntegralInRange<int>(0, 7) != 0);
  }
  fuzzHost().setPasteboardText(in.ConsumeBool() ? "Ab\r\n1\t\xC3\xA4\xE2\x82\xAC" : "");
  t_SetPasteHandler(in.ConsumeBool() ? std::function<void()>(t_PasteAsKeys) : nullptr);
  setUpWindows(in);
}

// The check that a call changes the video memory only inside its own window's blocks.
class UntouchedMemory {
 public:
  // Remembers the bytes that a call on `window` must leave as they are.
  void remember(UInt8 window) {
    regionStart_ = std::max(ReservedLowMemory, HighMemory + 1 - GuardBelowBlocks);
    checked_ = TopOfVideoMemory + 1 - regionStart_ <= LargestCheckedRegion;
    if (!checked_) return;
    own_ = window < 8 && Windows[window].Initialized ? window : 255;
    low_.assign(VideoMemory.begin(), VideoMemory.begin() + ReservedLowMemory);
    region_.assign(VideoMemory.begin() + regionStart_, VideoMemory.begin() + TopOfVideoMemory + 1);
    for (UInt8 n = 0; n < 8; ++n) addresses_[n] = blockAddresses(n);
  }

  // Aborts when a byte outside the window's blocks or a block's address changed.
  void verify(const char* operation) {
    if (!checked_) return;
    bool same = std::equal(low_.begin(), low_.end(), VideoMemory.begin());
    for (UInt8 n = 0; n < 8; ++n) same = same && addresses_[n] == blockAddresses(n);
    if (own_ < 8) {
      const auto [start, end, textStart, textEnd] = addresses_[own_];
      takeOver(start, end);
      if (textStart >= 0) takeOver(textStart, textEnd);
    }
    if (!same || !std::equal(region_.begin(), region_.end(), VideoMemory.begin() + regionStart_)) {
      std::fprintf(stderr, "%s changed video memory outside its window's blocks\n", operation);
      std::abort();
    }
  }

 private:
  static std::array<Int, 4> blockAddresses(UInt8 n) {
    const t_Window& record = Windows[n];
    return {record.MemoryStart, record.MemoryEnd, record.TextMemoryStart, record.TextMemoryEnd};
  }

  // Takes what the call wrote into a block of its own into the remembered bytes.
  void takeOver(Int first, Int last) {
    first = std::max(first, regionStart_);
    last = std::min(last, TopOfVideoMemory);
    if (first > last) return;
    std::copy(VideoMemory.begin() + first, VideoMemory.begin() + last + 1,
              region_.begin() + (first - regionStart_));
  }

  Int regionStart_ = 0;
  bool checked_ = false;
  UInt8 own_ = 255;
  std::vector<UInt8> low_;
  std::vector<UInt8> region_;
  std::array<std::array<Int, 4>, 8> addresses_{};
};

// The input's keys, then Returns, for the calls that wait for keys: a line input ends at a Return,
// and a code entry takes at most three keys.
void queueKeysAndReturns(In& in) {
  const int keys = in.ConsumeIntegralInRange<int>(0, 6);
  std::vector<Int> values;
  for (int k = 0; k < keys; ++k) values.push_back(keyCode(in));
  values.insert(values.end(), 4, 13);
  for (const Int value : values) {
    t_Event event;
    event.Kind = 1;
    event.Value = value;
    EventQueue.append(event);
  }
}

// The operations, in tables by the arguments they take from the input besides a window number.

template <typename Operation, std::size_t N>
Operation pick(In& in, const Operation (&table)[N]) {
  return table[in.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
}

constexpr void (*OfWindow[])(UInt8) = {
    t_CursorHome, t_CursorEnd,  t_CursorRight, t_CursorLeft,     t_CursorDown,       t_CursorUp,
    t_Cr,         t_ScrollUp,   t_ScrollDown,  t_ClearEndOfLine, t_ClearEndOfWindow, t_CursorOn,
    t_CursorOff,  t_CursorDraw, t_Normal,      t_Inverse,        t_Reverse,          t_TextLine,
    t_FullArea,   t_MixedArea,  t_WindowFront, t_WindowCenter};

constexpr void (*OfNumber[])(UInt8, Int) = {t_Htab,  t_Vtab,        t_RedirectOutput,
                                            t_Color, t_ColorBorder, t_InputInsert};

constexpr void (*OfCode[])(UInt8, UInt8) = {t_PrintChar, t_PrintControl};

constexpr void (*OfFlag[])(UInt8, bool) = {t_Graphic, t_WindowUpdate, t_WindowTitleVisible,
                                           t_WindowVisible};

using TextView = const std::string&;
constexpr void (*OfText[])(UInt8, TextView) = {
    t_WindowTitle,
    [](UInt8 w, TextView t) { t_Print(w, t); },
    [](UInt8 w, TextView t) {
      t_Print(w, Text{{t.begin(), t.end()}});
    },
    [](UInt8 w, TextView t) { t_GetScreen(w, t); },
    [](UInt8, TextView t) { t_PrinterPrint(t); },
    [](UInt8, TextView t) { t_ConsolePrint(t); },
    [](UInt8, TextView t) { t_SetPasteboardText(t); },
    [](UInt8, TextView t) { t_ReadFile(t); },
    [](UInt8, TextView t) { unicodeOfFontCodes(t); },
    [](UInt8, TextView t) { BytesToInteger(TextToBytes(t)); }};

Int menuTag(In& in) {
  static constexpr Int Tags[] = {0,   100, 101, 110, 111, 112, 113, 114, 200, 201, 205, 206, 207,
                                 208, 209, 210, 211, 212, 213, 214, 227, 228, 229, 230, 231};
  return in.ConsumeBool() ? in.PickValueInArray(Tags) : hostileInt(in);
}

std::string menuTitle(In& in) {
  static constexpr const char* Titles[] = {"File", "Edit", "Window", "Program", "Bearbeiten", ""};
  return in.ConsumeBool() ? in.PickValueInArray(Titles) : hostileText(in);
}

// An image of up to 64 x 64 pixels of any bytes, whose stated size now and then disagrees with
// its bytes or is hostile.
t_Image hostileImage(In& in) {
  t_Image image;
  image.Width = in.ConsumeIntegralInRange<Int>(0, 64);
  image.Height = in.ConsumeIntegralInRange<Int>(0, 64);
  image.Pixels = in.ConsumeBytes<UInt8>(static_cast<std::size_t>(image.Width * image.Height * 4));
  image.Pixels.resize(static_cast<std::size_t>(image.Width * image.Height * 4), 0xFF);
  if (in.ConsumeIntegralInRange<int>(0, 7) == 0) image.Width = hostileInt(in);
  if (in.ConsumeIntegralInRange<int>(0, 7) == 0) image.Height = hostileInt(in);
  return image;
}

// A value of each type that operations take, drawn from the input.
struct Draw {
  static Int of(In& in, Int) { return hostileInt(in); }
  static UInt8 of(In& in, UInt8) { return in.ConsumeIntegral<UInt8>(); }
  static bool of(In& in, bool) { return in.ConsumeBool(); }
  static double of(In& in, double) { return hostileDouble(in); }
  static std::string of(In& in, std::string_view) { return hostileText(in); }
  static t_MouseClick of(In& in, t_MouseClick) { return {hostileInt(in), hostileInt(in)}; }
  static t_Image of(In& in, t_Image) { return hostileImage(in); }
};

// Calls `operation` with its arguments drawn from the input after the window number `w`, in a
// braced list, which is evaluated in order (the arguments of a call are not).
template <typename Result, typename... Arguments>
void call(In& in, UInt8 w, Result (*operation)(UInt8, Arguments...)) {
  std::apply(operation, std::tuple{w, Draw::of(in, std::decay_t<Arguments>{})...});
}
template <typename Result, typename... Arguments>
void call(In& in, Result (*operation)(Arguments...)) {
  std::apply(operation, std::tuple{Draw::of(in, std::decay_t<Arguments>{})...});
}

// The operations of other arguments, some of them drawn from ranges of their own.
constexpr void (*OfOthers[])(In&, UInt8) = {
    [](In&, UInt8 w) { t_WindowImage(w); },
    [](In&, UInt8 w) { t_MouseEventPostCloseBoxClick(w); },
    [](In&, UInt8 w) { unicodeScreenText(w); },
    [](In&, UInt8 w) { t_WindowInfo(w); },
    [](In&, UInt8) { viewKeyUp(); },
    [](In&, UInt8 w) { t_InKey(w); },
    [](In&, UInt8) { t_Timer(); },
    [](In& in, UInt8) { t_Wait(in.ConsumeIntegralInRange<Int>(-2, 1)); },
    [](In&, UInt8) { viewMouseUp(); },
    [](In&, UInt8) { t_TakeMouseEvent(); },
    [](In&, UInt8) { t_PrinterClear(); },
    [](In&, UInt8) { t_ConsoleClear(); },
    [](In&, UInt8) { t_PasteAsKeys(); },
    [](In& in, UInt8 w) { call(in, w, t_ApplyDisplayMode); },
    [](In& in, UInt8) { call(in, viewFlagsChanged); },
    [](In& in, UInt8) { call(in, viewKeyReleased); },
    [](In& in, UInt8) { call(in, t_KeyDown); },
    [](In& in, UInt8) { call(in, t_Random); },
    [](In& in, UInt8) { call(in, t_Randomize); },
    [](In& in, UInt8) { call(in, HexText); },
    [](In& in, UInt8) { call(in, RealToText); },
    [](In& in, UInt8) { call(in, TextPosition); },
    [](In& in, UInt8) { call(in, TextMiddle); },
    [](In& in, UInt8 w) { call(in, w, t_Header); },
    [](In& in, UInt8 w) { call(in, w, t_TextHline); },
    [](In& in, UInt8 w) { call(in, w, t_PrintSymbol); },
    [](In& in, UInt8 w) { call(in, w, t_Plot); },
    [](In& in, UInt8 w) { call(in, w, t_PlotHalfSize); },
    [](In& in, UInt8 w) { call(in, w, t_PlotString); },
    [](In& in, UInt8 w) { call(in, w, t_HColor); },
    [](In& in, UInt8 w) { call(in, w, t_HColorRGB); },
    [](In& in, UInt8 w) { call(in, w, t_HPlot); },
    [](In& in, UInt8 w) { call(in, w, t_HLine); },
    [](In& in, UInt8 w) { call(in, w, t_HRect); },
    [](In& in, UInt8 w) { call(in, w, t_HCircle); },
    [](In& in, UInt8 w) { call(in, w, t_HFill); },
    [](In& in, UInt8 w) { call(in, w, t_HPixel); },
    [](In& in, UInt8 w) { call(in, w, t_HGet); },
    [](In& in, UInt8 w) { call(in, w, t_HPut); },
    [](In& in, UInt8 w) {
      const Int x = hostileInt(in), y = hostileInt(in);
      t_HText(w, x, y, hostileText(in));
    },
    [](In&, UInt8 w) { t_WaitFrame(w); },
    [](In& in, UInt8 w) { call(in, w, t_LoResOffset); },
    [](In& in, UInt8 w) { call(in, w, t_Scrn); },
    [](In& in, UInt8 w) { call(in, w, t_InvertRect); },
    [](In& in, UInt8 w) { call(in, w, t_WindowPos); },
    [](In& in, UInt8 w) { call(in, w, t_WindowSize); },
    [](In& in, UInt8 w) { call(in, w, t_MouseEventHandler); },
    [](In& in, UInt8 w) { call(in, w, viewMouseDown); },
    [](In& in, UInt8 w) { t_WindowFont(w, font(in)); },
    [](In& in, UInt8) { t_LoadFontResource(fontName(in)); },
    [](In& in, UInt8 w) { t_PrintSpc(w, in.ConsumeIntegralInRange<Int>(-5, 300)); },
    [](In& in, UInt8 w) {
      // t_PrintTab prints as many characters as the cursor lies left of the column, a count
      // that may be as large as the program wants; the fuzzing keeps it modest.
      const Int from = w < 8 ? static_cast<Int>(Windows[w].TextHpos) : 0;
      if (from > Largest - 300) return;
      const Int column = from + in.ConsumeIntegralInRange<Int>(-5, 300);
      t_PrintTab(w, column, in.ConsumeIntegral<UInt8>());
    },
    [](In& in, UInt8 w) {
      t_DisplayMode(w, in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 5) : 99);
    },
    [](In& in, UInt8 w) {
      const Int pixels = w < 8 ? Windows[w].Width * Windows[w].Height : 0;
      std::vector<UInt8> buffer(static_cast<std::size_t>(
          std::clamp<Int>(4 * pixels - in.ConsumeIntegralInRange<Int>(-4, 4), 0, 1 << 28)));
      const auto order =
          in.ConsumeBool() ? PixelOrder::NativeArgb32 : PixelOrder::AlphaRedGreenBlue;
      t_WindowImageInto(w, in.ConsumeBool() ? buffer.data() : nullptr, buffer.size(), order);
    },
    [](In& in, UInt8 w) {
      const Int code = keyCode(in);
      const std::string characters = hostileText(in);
      viewKeyDown(w, code, characters, hostileInt(in));
    },
    [](In& in, UInt8 w) {
      queueKeysAndReturns(in);
      t_GetKey(w);
    },
    [](In& in, UInt8 w) {
      queueKeysAndReturns(in);
      call(in, w, t_GetYesNo);
    },
    [](In& in, UInt8 w) {
      queueKeysAndReturns(in);
      const std::string prompt = hostileText(in), defaultText = hostileText(in);
      const bool displayOnly = in.ConsumeBool();
      const Int mode = in.ConsumeIntegralInRange<Int>(0, 5), length = hostileInt(in);
      t_InputForm(w, prompt, defaultText, displayOnly, mode, length);
    },
    [](In& in, UInt8 w) {
      queueKeysAndReturns(in);
      t_InputEdit(w, keyCode(in));
    },
    [](In& in, UInt8) {
      const std::string menu = menuTitle(in);
      t_MenuItemIndex(menu, hostileText(in));
    },
    [](In& in, UInt8) {
      const std::string menu = menuTitle(in);
      in.ConsumeBool() ? t_MenuItemDelete(menu, hostileInt(in))
                       : static_cast<void>(t_MenuItemTitle(menu, hostileInt(in)));
    },
    [](In& in, UInt8) {
      t_MenuItem item;
      item.InMenu = in.ConsumeBool();
      item.MenuTitle = menuTitle(in);
      item.ItemTitle = hostileText(in);
      item.KeyChar = hostileText(in);
      item.KeyMods = in.ConsumeIntegral<std::uint64_t>();
      item.KeyAsc = hostileInt(in);
      item.Tag = menuTag(in);
      fuzzHost().setFilePanelAnswer(in.ConsumeBool() ? "/tmp/chosen/file.txt" : "");
      t_MenuEventHandler(item);
    },
    [](In& in, UInt8) {
      t_MenuAction action;
      action.Tag = menuTag(in);
      action.Action = in.ConsumeBool() ? action.Tag : menuTag(in);
      action.Title = hostileText(in);
      action.FileTypes = hostileText(in);
      t_AddMenuAction(action);
    },
    [](In& in, UInt8) {
      t_MenuActionOf(menuTag(in));
      t_TakeMenuEvent();
    }};

// Hostile values in the record fields a program may write, in any of the eight windows.
constexpr Relaxed<Int> t_Window::*NumberFields[] = {
    &t_Window::TextHpos,           &t_Window::TextVpos,           &t_Window::TextFirstColumn,
    &t_Window::TextLastColumn,     &t_Window::TextFirstLine,      &t_Window::TextLastLine,
    &t_Window::TextCursorLevel,    &t_Window::LoResMode,          &t_Window::LoResOffsetX,
    &t_Window::LoResOffsetY,       &t_Window::RefreshRate,        &t_Window::TextDisplayMode,
    &t_Window::TextRedirectOutput, &t_Window::InputHpos,          &t_Window::InputVpos,
    &t_Window::InputCursorPos,     &t_Window::InputMaxCharacters, &t_Window::InputMode};

void writeRecordField(In& in, UInt8) {
  t_Window& record = Windows[in.ConsumeIntegralInRange<int>(0, 7)];
  const Int value = hostileInt(in);
  const auto field = in.ConsumeIntegralInRange<std::size_t>(0, std::size(NumberFields) + 3);
  if (field < std::size(NumberFields)) {
    record.*NumberFields[field] = value;
  } else if (field == std::size(NumberFields)) {
    record.ScrollLock = value % 2 != 0;
  } else if (field == std::size(NumberFields) + 1) {
    record.TextInverse = value % 2 != 0;
  } else if (field == std::size(NumberFields) + 2) {
    record.TextColor = static_cast<UInt8>(value);
  } else {
    record.InputString = hostileText(in);
  }
}

// A group of operations as the check of untouched memory names it; a group listed twice is
// chosen twice as often.
struct Group {
  const char* Name;
  void (*Run)(In&, UInt8);
};
constexpr Group Groups[] = {
    {"an operation of a window", [](In& in, UInt8 w) { pick(in, OfWindow)(w); }},
    {"an operation of a window", [](In& in, UInt8 w) { pick(in, OfWindow)(w); }},
    {"an operation of a number", [](In& in, UInt8 w) { pick(in, OfNumber)(w, hostileInt(in)); }},
    {"an operation of a code",
     [](In& in, UInt8 w) { pick(in, OfCode)(w, in.ConsumeIntegral<UInt8>()); }},
    {"an operation of a flag", [](In& in, UInt8 w) { pick(in, OfFlag)(w, in.ConsumeBool()); }},
    {"an operation of a text", [](In& in, UInt8 w) { pick(in, OfText)(w, hostileText(in)); }},
    {"an operation of a text", [](In& in, UInt8 w) { pick(in, OfText)(w, hostileText(in)); }},
    {"another operation", [](In& in, UInt8 w) { pick(in, OfOthers)(in, w); }},
    {"another operation", [](In& in, UInt8 w) { pick(in, OfOthers)(in, w); }},
    {"another operation", [](In& in, UInt8 w) { pick(in, OfOthers)(in, w); }},
    {"a record field", writeRecordField},
    {"a record field", writeRecordField}};

Int pixelsOf(UInt8 window) {
  if (window >= 8 || !Windows[window].Initialized) return 1;
  return Windows[window].Width * Windows[window].Height;
}

// Initialises a window by font name or with a font record; this may move every window's blocks.
void initialiseWindow(In& in, UInt8 w) {
  const bool byFontName = in.ConsumeBool();
  const Int bitDepth = depth(in);
  const auto [width, height, border, borderHeight] = std::array{
      hostileInt(in), hostileInt(in), hostileInt(in), byFontName ? Int{0} : hostileInt(in)};
  if (byFontName) {
    t_InitWindow(w, bitDepth, width, height, border, fontName(in));
  } else {
    const t_Font& chosen = font(in);
    t_InitWindow(w, bitDepth, false, width, height, border, borderHeight, chosen, in.ConsumeBool());
  }
  noteBlocks();
}

// Runs one operation and returns the pixels of the window it addressed. All operations but the
// window initialisations change only the blocks of the window they address.
Int runOperation(In& in, UntouchedMemory& memory) {
  const auto choice = in.ConsumeIntegralInRange<std::size_t>(0, std::size(Groups) + 1);
  const UInt8 w = windowNumber(in);
  if (choice >= std::size(Groups)) {
    initialiseWindow(in, w);
  } else {
    memory.remember(w);
    Groups[choice].Run(in, w);
    EventQueue.clear();
    memory.verify(Groups[choice].Name);
  }
  return pixelsOf(w);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setLogSink([](std::string_view) {});
  setHost(fuzzHost());
  initrvtools();
  t_InitMemory();
  fonts();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  In in(data, size);
  startAfresh(in);
  UntouchedMemory memory;
  Int pixels = 0;
  for (int step = 0; step < OperationsPerInput && in.remaining_bytes() > 0; ++step) {
    if (pixels > PixelsPerInput) break;
    pixels += runOperation(in, memory);
  }
  return 0;
}
