// libFuzzer target for the operations a program calls: random sequences of them on windows of
// every depth, on the headless host, with hostile arguments (negative, huge, the ends of the Int
// range, window numbers 0..255, long and invalid UTF-8 texts, fonts of any cell size) and
// hostile values in the record fields a program may write (cursor, text area, LoResMode,
// ScrollLock, RefreshRate, TextColor, display mode, redirection, the line editor's state).
// Nothing may crash, read or write out of bounds or overflow (AddressSanitizer and
// UndefinedBehaviorSanitizer), and no input may take longer than libFuzzer's -timeout, so a
// call whose work is not bounded by the window's cells is a finding. Besides, each call may
// change the video memory only inside the blocks of the window it addresses.
//
// Every input starts from the same state: fresh window records, windows 0..7 set up by the
// input's first bytes, empty queues, menus and text windows. Operations that wait for keys
// find them queued, followed by Returns, so that no call waits for ever.
//
//   cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++-14 \
//         -DCMAKE_C_COMPILER=clang-14 -DRVTOOLS_SANITIZE=address -DRVTOOLS_FUZZ=ON
//   ninja -C build-fuzz rvtools_fuzz_operations
//   build-fuzz/RvtoolsFuzz.app/Contents/MacOS/rvtools_fuzz_operations -timeout=10 \
//         -max_total_time=30 corpus/
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "input/menus.hpp"
#include "rvtools/headless.hpp"
#include "rvtools/host.hpp"
#include "rvtools/rvtools.hpp"

namespace {

using namespace rvtools;

constexpr Int Smallest = std::numeric_limits<Int>::min();
constexpr Int Largest = std::numeric_limits<Int>::max();
constexpr int OperationsPerInput = 64;
// The pixels of the windows that an input's operations address, summed, before it stops: a
// call may take time in proportion to its window, and an input stays well inside -timeout.
constexpr Int PixelsPerInput = 16 << 20;
constexpr Int ReservedLowMemory = 0x10000;
// Bytes below the lowest block that every call must leave alone, besides the reserved 64 K.
constexpr Int GuardBelowBlocks = 0x10000;
// Larger windows are left out of the check of untouched memory, which would slow the fuzzing.
constexpr Int LargestCheckedRegion = 4 << 20;

// The headless host, except that views compose their pictures only when the fuzzing thread
// asks; the refresh thread's requests are dropped, so that all work happens on that thread.
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

// ---------------------------------------------------------------------------------------------
// Hostile values

Int hostileInt(FuzzedDataProvider& in) {
  static constexpr Int Edges[] = {Smallest,     Smallest + 1,    Largest,      Largest - 1,
                                  Int{1} << 40, -(Int{1} << 40), Int{1} << 31, -(Int{1} << 31),
                                  Int{1} << 32, Int{1} << 62,    8191,         8192,
                                  8193,         65535,           0x1000000,    -8192};
  switch (in.ConsumeIntegralInRange<int>(0, 5)) {
    case 0:
      return in.ConsumeIntegralInRange<Int>(-3, 12);
    case 1:
    case 2:
      return in.ConsumeIntegralInRange<Int>(-40, 300);
    case 3:
      return in.PickValueInArray(Edges);
    case 4:
      return in.ConsumeIntegral<Int>();
    default:
      return in.ConsumeIntegralInRange<Int>(0, 2);
  }
}

// Mostly 0..8, sometimes any number 0..255.
UInt8 windowNumber(FuzzedDataProvider& in) {
  const auto choice = in.ConsumeIntegral<UInt8>();
  return choice < 200 ? choice % 9 : in.ConsumeIntegral<UInt8>();
}

// A text of any bytes, invalid UTF-8 included; now and then thousands of bytes long.
std::string hostileText(FuzzedDataProvider& in) {
  std::string text = in.ConsumeBytesAsString(in.ConsumeIntegralInRange<std::size_t>(0, 24));
  if (!text.empty() && in.ConsumeIntegralInRange<int>(0, 15) == 0) {
    while (text.size() < 4000) text += text;
  }
  return text;
}

double hostileDouble(FuzzedDataProvider& in) {
  static constexpr double Edges[] = {std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     1e300,
                                     -1e300,
                                     9223372036854775808.0,
                                     -9223372036854775808.0,
                                     -0.5};
  if (in.ConsumeBool()) return in.PickValueInArray(Edges);
  return static_cast<double>(in.ConsumeIntegralInRange<int>(-50, 1400)) +
         in.ConsumeProbability<double>();
}

Int depth(FuzzedDataProvider& in) {
  static constexpr Int Depths[] = {1, 4, 8, 16, 24, 32};
  return in.ConsumeIntegralInRange<int>(0, 7) == 0 ? hostileInt(in) : in.PickValueInArray(Depths);
}

// ---------------------------------------------------------------------------------------------
// Fonts: the two of the bundle, small and short ones made here, and cell sizes of no real font.
// No cell is smaller than 8 x 8, so that a whole screen stays a few thousand cells.

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
  static const auto* all = [] {
    auto* made = new std::vector<t_Font>;
    made->push_back(t_LoadFontResource("MenloBold 16x32.font"));
    made->push_back(t_LoadFontResource("MenloRegular 16x32.font"));
    made->push_back(madeFont(2, 8, 8, 256, 64));
    made->push_back(madeFont(2, 8, 16, 100, 128));  // glyphs beyond 99 are missing
    made->push_back(madeFont(0, 8, 8, 256, 64));    // not grey: every glyph is refused
    made->push_back(madeFont(2, 0, 0, 4, 16));
    made->push_back(madeFont(2, -8, -8, 4, 16));
    made->push_back(madeFont(2, Largest, 16, 4, 16));
    made->push_back(madeFont(2, 16, Smallest, 4, 16));
    made->push_back(EmptyFont());
    return made;
  }();
  return *all;
}

const t_Font& font(FuzzedDataProvider& in) {
  return fonts()[in.ConsumeIntegralInRange<std::size_t>(0, fonts().size() - 1)];
}

std::string fontName(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
      return "MenloBold 16x32.font";
    case 1:
      return "MenloRegular 16x32.font";
    case 2:
      return "missing.font";
    default:
      return hostileText(in);
  }
}

// ---------------------------------------------------------------------------------------------
// The state every input starts from

// The lowest address that the input's windows have taken, from where the next input makes the
// video memory as new.
Int lowestBlockSeen = TopOfVideoMemory + 1;

void noteBlocks() {
  lowestBlockSeen = std::min(lowestBlockSeen, HighMemory + 1);
}

// Windows 0..7 as the input's first byte of each says: a depth (or none), a size and a font.
void setUpWindows(FuzzedDataProvider& in) {
  static constexpr Int Depths[] = {1, 4, 8, 16, 24, 32};
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

void startAfresh(FuzzedDataProvider& in) {
  std::fill(VideoMemory.begin() + lowestBlockSeen, VideoMemory.begin() + TopOfVideoMemory + 1,
            UInt8{0xFF});
  lowestBlockSeen = TopOfVideoMemory + 1;
  for (t_Window& record : Windows) record = t_Window{};
  HighMemory = TopOfVideoMemory;
  DefaultWindow = 255;
  EventQueue.clear();
  MouseEventQueue.clear();
  MenuEventQueue.clear();
  fuzzHost().setMenus(HeadlessHost::englishMenus());
  buildMenuActions();
  for (UInt8 window :
       {PasteboardWindowNumber, VirtualPrinterWindowNumber, SystemConsoleWindowNumber}) {
    fuzzHost().setTextViewPresent(window, in.ConsumeIntegralInRange<int>(0, 7) != 0);
  }
  fuzzHost().setPasteboardText(in.ConsumeBool() ? "Ab\r\n1\t\xC3\xA4\xE2\x82\xAC" : "");
  t_SetPasteHandler(in.ConsumeBool() ? std::function<void()>(t_PasteAsKeys) : nullptr);
  setUpWindows(in);
}

// ---------------------------------------------------------------------------------------------
// The check that a call changes the video memory only inside its own window's blocks

struct Block {
  Int first, last;  // inclusive
};

class UntouchedMemory {
 public:
  // Remembers the bytes that a call on `window` must leave as they are.
  void remember(UInt8 window) {
    regionStart_ = std::max(ReservedLowMemory, HighMemory + 1 - GuardBelowBlocks);
    checked_ = TopOfVideoMemory + 1 - regionStart_ <= LargestCheckedRegion;
    if (!checked_) return;
    own_.clear();
    if (window < 8 && Windows[window].Initialized) {
      const t_Window& record = Windows[window];
      own_.push_back({record.MemoryStart, record.MemoryEnd});
      if (record.TextMemoryStart >= 0) {
        own_.push_back({record.TextMemoryStart, record.TextMemoryEnd});
      }
    }
    std::sort(own_.begin(), own_.end(), [](Block a, Block b) { return a.first < b.first; });
    low_.assign(VideoMemory.begin(), VideoMemory.begin() + ReservedLowMemory);
    region_.assign(VideoMemory.begin() + regionStart_, VideoMemory.begin() + TopOfVideoMemory + 1);
    for (UInt8 n = 0; n < 8; ++n) addresses_[n] = blockAddresses(n);
  }

  // Aborts when a byte outside the window's blocks or a block's address changed.
  void verify(const char* operation) const {
    if (!checked_) return;
    bool same = std::equal(low_.begin(), low_.end(), VideoMemory.begin());
    Int from = regionStart_;
    for (const Block& block : own_) {
      same = same && unchangedBetween(from, block.first - 1);
      from = std::max(from, block.last + 1);
    }
    same = same && unchangedBetween(from, TopOfVideoMemory);
    for (UInt8 n = 0; n < 8; ++n) same = same && addresses_[n] == blockAddresses(n);
    if (!same) {
      std::fprintf(stderr, "%s changed video memory outside its window's blocks\n", operation);
      std::abort();
    }
  }

 private:
  static std::array<Int, 4> blockAddresses(UInt8 n) {
    const t_Window& record = Windows[n];
    return {record.MemoryStart, record.MemoryEnd, record.TextMemoryStart, record.TextMemoryEnd};
  }

  bool unchangedBetween(Int first, Int last) const {
    if (first > last) return true;
    return std::equal(VideoMemory.begin() + first, VideoMemory.begin() + last + 1,
                      region_.begin() + (first - regionStart_));
  }

  Int regionStart_ = 0;
  bool checked_ = false;
  std::vector<Block> own_;
  std::vector<UInt8> low_;
  std::vector<UInt8> region_;
  std::array<std::array<Int, 4>, 8> addresses_{};
};

// ---------------------------------------------------------------------------------------------
// Keys for the calls that wait for them

void queueKey(Int value) {
  t_Event event;
  event.Kind = 1;
  event.Value = value;
  EventQueue.append(event);
}

// The input's keys, then Returns: a line input ends at a Return, and a code entry takes at
// most three keys.
void queueKeysAndReturns(FuzzedDataProvider& in) {
  const int keys = in.ConsumeIntegralInRange<int>(0, 6);
  for (int k = 0; k < keys; ++k) {
    queueKey(in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 130) : hostileInt(in));
  }
  for (int k = 0; k < 4; ++k) queueKey(13);
}

// ---------------------------------------------------------------------------------------------
// Hostile values in the record fields a program may write

void writeRecordField(FuzzedDataProvider& in) {
  t_Window& record = Windows[in.ConsumeIntegralInRange<int>(0, 7)];
  const Int value = hostileInt(in);
  switch (in.ConsumeIntegralInRange<int>(0, 21)) {
    case 0:
      record.TextHpos = value;
      break;
    case 1:
      record.TextVpos = value;
      break;
    case 2:
      record.TextFirstColumn = value;
      break;
    case 3:
      record.TextLastColumn = value;
      break;
    case 4:
      record.TextFirstLine = value;
      break;
    case 5:
      record.TextLastLine = value;
      break;
    case 6:
      record.TextCursorLevel = value;
      break;
    case 7:
      record.LoResMode = value;
      break;
    case 8:
      record.LoResOffsetX = value;
      break;
    case 9:
      record.LoResOffsetY = value;
      break;
    case 10:
      record.ScrollLock = value % 2 != 0;
      break;
    case 11:
      record.RefreshRate = value;
      break;
    case 12:
      record.TextColor = static_cast<UInt8>(value);
      break;
    case 13:
      record.TextDisplayMode = value;
      break;
    case 14:
      record.TextRedirectOutput = value;
      break;
    case 15:
      record.TextInverse = value % 2 != 0;
      break;
    case 16:
      record.InputHpos = value;
      break;
    case 17:
      record.InputVpos = value;
      break;
    case 18:
      record.InputCursorPos = value;
      break;
    case 19:
      record.InputMaxCharacters = value;
      break;
    case 20:
      record.InputMode = value;
      break;
    default:
      record.InputString = hostileText(in);
      break;
  }
}

// ---------------------------------------------------------------------------------------------
// The operations

void cursorOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 14)) {
    case 0:
      return t_CursorHome(w);
    case 1:
      return t_CursorEnd(w);
    case 2:
      return t_Htab(w, hostileInt(in));
    case 3:
      return t_Vtab(w, hostileInt(in));
    case 4:
      return t_CursorRight(w);
    case 5:
      return t_CursorLeft(w);
    case 6:
      return t_CursorDown(w);
    case 7:
      return t_CursorUp(w);
    case 8:
      return t_Cr(w);
    case 9:
      return t_ScrollUp(w);
    case 10:
      return t_ScrollDown(w);
    case 11:
      return t_ClearEndOfLine(w);
    case 12:
      return t_ClearEndOfWindow(w);
    case 13:
      return t_CursorOn(w);
    default:
      return in.ConsumeBool() ? t_CursorOff(w) : t_CursorDraw(w);
  }
}

void printOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 15)) {
    case 0:
      return t_Print(w, hostileText(in));
    case 1: {
      const std::string bytes = hostileText(in);
      return t_Print(w, Text{{bytes.begin(), bytes.end()}});
    }
    case 2:
      return t_PrintChar(w, in.ConsumeIntegral<UInt8>());
    case 3:
      return t_PrintSpc(w, in.ConsumeIntegralInRange<Int>(-5, 300));
    case 4: {
      // t_PrintTab prints as many characters as the cursor lies left of the column, a count
      // that may be as large as the program wants; the fuzzing keeps it modest.
      const Int from = w < 8 ? static_cast<Int>(Windows[w].TextHpos) : 0;
      if (from > Largest - 300) return;
      return t_PrintTab(w, from + in.ConsumeIntegralInRange<Int>(-5, 300),
                        in.ConsumeIntegral<UInt8>());
    }
    case 5:
      return t_PrintControl(w, in.ConsumeIntegral<UInt8>());
    case 6:
      t_ApplyDisplayMode(w, hostileInt(in));
      return;
    case 7:
      return t_DisplayMode(w, in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 5) : 99);
    case 8:
      return t_Normal(w);
    case 9:
      return t_Inverse(w);
    case 10:
      return t_Reverse(w);
    case 11:
      return t_RedirectOutput(w, hostileInt(in));
    case 12:
      return t_Header(w, hostileText(in), hostileText(in));
    case 13: {
      const Int first = hostileInt(in), last = hostileInt(in), line = hostileInt(in);
      return t_TextHline(w, first, last, line, in.ConsumeIntegral<UInt8>());
    }
    case 14:
      return t_TextLine(w);
    default: {
      const auto code = in.ConsumeIntegral<UInt8>(), color = in.ConsumeIntegral<UInt8>();
      const Int column = hostileInt(in), line = hostileInt(in);
      return t_PrintSymbol(w, code, color, column, line);
    }
  }
}

void graphicsOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 12)) {
    case 0:
      return t_Graphic(w, in.ConsumeBool());
    case 1:
      return in.ConsumeBool() ? t_FullArea(w) : t_MixedArea(w);
    case 2:
    case 3: {
      const Int x = hostileInt(in), y = hostileInt(in);
      return t_Plot(w, x, y);
    }
    case 4: {
      const Int x = hostileInt(in), y = hostileInt(in);
      return t_PlotHalfSize(w, x, y, in.ConsumeBool());
    }
    case 5: {
      const Int x = hostileInt(in), y = hostileInt(in);
      return t_PlotString(w, x, y, hostileText(in));
    }
    case 6: {
      const Int x = hostileInt(in), y = hostileInt(in);
      return t_LoResOffset(w, x, y);
    }
    case 7: {
      const Int x = hostileInt(in), y = hostileInt(in);
      t_Scrn(w, x, y);
      return;
    }
    case 8: {
      const Int c1 = hostileInt(in), l1 = hostileInt(in), c2 = hostileInt(in), l2 = hostileInt(in);
      return t_InvertRect(w, c1, l1, c2, l2);
    }
    case 9:
      t_GetScreen(w, hostileText(in));
      return;
    case 10:
      unicodeScreenText(w);
      return;
    case 11:
      return t_Color(w, hostileInt(in));
    default:
      return t_ColorBorder(w, hostileInt(in));
  }
}

void imageOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 2)) {
    case 0:
      return t_WindowUpdate(w, in.ConsumeBool());
    case 1:
      t_WindowImage(w);
      return;
    default: {
      const Int pixels = w < 8 ? Windows[w].Width * Windows[w].Height : 0;
      std::vector<UInt8> buffer(static_cast<std::size_t>(
          std::clamp<Int>(4 * pixels - in.ConsumeIntegralInRange<Int>(-4, 4), 0, 1 << 28)));
      const auto order =
          in.ConsumeBool() ? PixelOrder::NativeArgb32 : PixelOrder::AlphaRedGreenBlue;
      t_WindowImageInto(w, in.ConsumeBool() ? buffer.data() : nullptr, buffer.size(), order);
      return;
    }
  }
}

void keyOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 7)) {
    case 0: {
      const Int keyCode =
          in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 130) : hostileInt(in);
      const std::string characters = hostileText(in);
      return viewKeyDown(w, keyCode, characters, hostileInt(in));
    }
    case 1:
      return viewKeyUp();
    case 2:
      return viewFlagsChanged(hostileInt(in));
    case 3:
      queueKeysAndReturns(in);
      t_GetKey(w);
      return;
    case 4: {
      queueKeysAndReturns(in);
      const Int answer = hostileInt(in);
      t_GetYesNo(w, answer, in.ConsumeBool());
      return;
    }
    case 5: {
      queueKeysAndReturns(in);
      const std::string prompt = hostileText(in), defaultText = hostileText(in);
      const bool displayOnly = in.ConsumeBool();
      const Int mode = in.ConsumeIntegralInRange<Int>(0, 5), length = hostileInt(in);
      t_InputForm(w, prompt, defaultText, displayOnly, mode, length);
      return;
    }
    case 6:
      queueKeysAndReturns(in);
      return t_InputEdit(
          w, in.ConsumeBool() ? in.ConsumeIntegralInRange<Int>(0, 130) : hostileInt(in));
    default:
      return t_InputInsert(w, hostileInt(in));
  }
}

void mouseOperation(FuzzedDataProvider& in, UInt8 w) {
  const t_MouseClick click{hostileInt(in), hostileInt(in)};
  const double x = hostileDouble(in), y = hostileDouble(in);
  switch (in.ConsumeIntegralInRange<int>(0, 4)) {
    case 0:
      return viewMouseDown(w, click, x, y, in.ConsumeBool());
    case 1:
      return viewMouseUp();
    case 2:
      return t_MouseEventHandler(w, click, x, y);
    case 3:
      return t_MouseEventPostCloseBoxClick(w);
    default:
      t_TakeMouseEvent();
      return;
  }
}

Int menuTag(FuzzedDataProvider& in) {
  static constexpr Int Tags[] = {0,   100, 101, 110, 111, 112, 113, 114, 200, 201, 205, 206, 207,
                                 208, 209, 210, 211, 212, 213, 214, 227, 228, 229, 230, 231};
  return in.ConsumeBool() ? in.PickValueInArray(Tags) : hostileInt(in);
}

void menuOperation(FuzzedDataProvider& in) {
  static constexpr const char* Menus[] = {"File", "Edit", "Window", "Program", "Bearbeiten", ""};
  const std::string menu = in.ConsumeBool() ? in.PickValueInArray(Menus) : hostileText(in);
  switch (in.ConsumeIntegralInRange<int>(0, 5)) {
    case 0:
      t_MenuItemIndex(menu, hostileText(in));
      return;
    case 1:
      return t_MenuItemDelete(menu, hostileInt(in));
    case 2:
      t_MenuItemTitle(menu, hostileInt(in));
      return;
    case 3: {
      t_MenuItem item;
      item.InMenu = in.ConsumeBool();
      item.MenuTitle = menu;
      item.ItemTitle = hostileText(in);
      item.KeyChar = hostileText(in);
      item.KeyMods = in.ConsumeIntegral<std::uint64_t>();
      item.KeyAsc = hostileInt(in);
      item.Tag = menuTag(in);
      fuzzHost().setFilePanelAnswer(in.ConsumeBool() ? "/tmp/chosen/file.txt" : "");
      return t_MenuEventHandler(item);
    }
    case 4: {
      t_MenuAction action;
      action.Tag = menuTag(in);
      action.Action = in.ConsumeBool() ? action.Tag : menuTag(in);
      action.Title = hostileText(in);
      action.FileTypes = hostileText(in);
      return t_AddMenuAction(action);
    }
    default:
      t_MenuActionOf(menuTag(in));
      t_TakeMenuEvent();
      return;
  }
}

void frameOperation(FuzzedDataProvider& in, UInt8 w) {
  switch (in.ConsumeIntegralInRange<int>(0, 7)) {
    case 0: {
      const Int x = hostileInt(in), y = hostileInt(in);
      return t_WindowPos(w, x, y);
    }
    case 1: {
      const Int x = hostileInt(in), y = hostileInt(in), width = hostileInt(in);
      return t_WindowSize(w, x, y, width, hostileInt(in));
    }
    case 2:
      return t_WindowTitle(w, hostileText(in));
    case 3:
      return t_WindowTitleVisible(w, in.ConsumeBool());
    case 4:
      return t_WindowFront(w);
    case 5:
      return t_WindowCenter(w);
    case 6:
      return t_WindowVisible(w, in.ConsumeBool());
    default:
      t_WindowInfo(w);
      return;
  }
}

void utilityOperation(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange<int>(0, 13)) {
    case 0:
      t_Random(hostileInt(in));
      return;
    case 1:
      BytesToInteger(TextToBytes(hostileText(in)));
      return;
    case 2: {
      const std::string text = hostileText(in), pattern = hostileText(in);
      TextPosition(text, pattern, hostileInt(in));
      return;
    }
    case 3: {
      const std::string text = hostileText(in);
      const Int start = hostileInt(in);
      TextMiddle(text, start, hostileInt(in));
      return;
    }
    case 4:
      RealToText(hostileDouble(in));
      return;
    case 5:
      HexText(hostileInt(in));
      return;
    case 6:
      return t_PrinterPrint(hostileText(in));
    case 7:
      return t_ConsolePrint(hostileText(in));
    case 8:
      return in.ConsumeBool() ? t_PrinterClear() : t_ConsoleClear();
    case 9:
      return t_SetPasteboardText(hostileText(in));
    case 10:
      return t_PasteAsKeys();
    case 11:
      t_LoadFontResource(fontName(in));
      return;
    case 12:
      t_ReadFile(hostileText(in));
      return;
    default:
      unicodeOfFontCodes(hostileText(in));
      return;
  }
}

Int pixelsOf(UInt8 window) {
  if (window >= 8 || !Windows[window].Initialized) return 1;
  return Windows[window].Width * Windows[window].Height;
}

void initialiseWindow(FuzzedDataProvider& in, UInt8 w, bool byFontName) {
  const Int bitDepth = depth(in), width = hostileInt(in), height = hostileInt(in);
  if (byFontName) {
    t_InitWindow(w, bitDepth, width, height, hostileInt(in), fontName(in));
  } else {
    const Int borderWidth = hostileInt(in), borderHeight = hostileInt(in);
    t_InitWindow(w, bitDepth, false, width, height, borderWidth, borderHeight, font(in),
                 in.ConsumeBool());
  }
  noteBlocks();
}

// Runs one operation and returns the pixels of the window it addressed. The window
// initialisations may move every window's blocks; all other operations change only the blocks
// of the window they address.
Int runOperation(FuzzedDataProvider& in, UntouchedMemory& memory) {
  const int operation = in.ConsumeIntegralInRange<int>(0, 15);
  const UInt8 w = windowNumber(in);
  if (operation <= 1) {
    initialiseWindow(in, w, operation == 1);
    return pixelsOf(w);
  }
  memory.remember(w);
  const char* name = "";
  switch (operation) {
    case 2:
      name = "t_WindowFont", t_WindowFont(w, font(in));
      break;
    case 3:
    case 4:
      name = "cursor", cursorOperation(in, w);
      break;
    case 5:
    case 6:
      name = "print", printOperation(in, w);
      break;
    case 7:
      name = "graphics", graphicsOperation(in, w);
      break;
    case 8:
      name = "image", imageOperation(in, w);
      break;
    case 9:
      name = "keys", keyOperation(in, w);
      break;
    case 10:
      name = "mouse", mouseOperation(in, w);
      break;
    case 11:
      name = "menus", menuOperation(in);
      break;
    case 12:
      name = "frames", frameOperation(in, w);
      break;
    case 13:
      name = "utilities", utilityOperation(in);
      break;
    default:
      name = "record", writeRecordField(in);
      break;
  }
  EventQueue.clear();
  memory.verify(name);
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
  FuzzedDataProvider in(data, size);
  startAfresh(in);
  UntouchedMemory memory;
  Int pixels = 0;
  for (int step = 0; step < OperationsPerInput && in.remaining_bytes() > 0; ++step) {
    if (pixels > PixelsPerInput) break;
    pixels += runOperation(in, memory);
  }
  return 0;
}
