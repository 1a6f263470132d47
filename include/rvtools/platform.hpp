// SPDX-License-Identifier: MIT
// rvtools: the platform a program runs on, as the runtime sees it: the `Host` interface.
//
// The runtime never talks to a windowing system itself. Every platform need (window frames,
// views, the border colour, sounds, the pasteboard, the bundle path, the clock and the random
// source) goes through the host that the application sets once at start-up. The desktop,
// terminal and headless hosts implement this interface; rvtools/host.hpp gathers everything
// else a host needs. Every method may be called from any thread; a host carries platform work
// over to its interface thread and waits for it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools {

// Window numbers: 0..7 graphic windows, 8 pasteboard, 9 virtual printer, 10 system console,
// 11 preferences, 12 main window, 255 no window.
inline constexpr UInt8 PasteboardWindowNumber = 8;
inline constexpr UInt8 VirtualPrinterWindowNumber = 9;
inline constexpr UInt8 SystemConsoleWindowNumber = 10;
inline constexpr UInt8 PreferencesWindowNumber = 11;
inline constexpr UInt8 MainWindowNumber = 12;
inline constexpr UInt8 NoWindow = 255;

// A platform window's frame in screen coordinates, and whether it is shown.
struct WindowFrame {
  Int X = 0;
  Int Y = 0;
  Int Width = 0;
  Int Height = 0;
  bool Visible = false;
};

struct ScreenSize {
  Int Width = 0;
  Int Height = 0;
};

enum class Sound { Click, Beep };

struct t_Image;

// What an open or save panel shows, and the file types it accepts ("txt,png"; empty for all).
struct FilePanelRequest {
  bool Save = false;
  std::string Title;
  std::string Note;
  std::string FileName;
  std::string FileTypes;
};

class Host {
 public:
  virtual ~Host() = default;

  // Threads: whether the caller is the interface thread, and synchronous work there.
  virtual bool isInterfaceThread() const = 0;
  virtual void runOnInterfaceThread(const std::function<void()>& work) = 0;

  // Window lookup: the platform window of numbers 0..12 and the view of 0..7, or null.
  virtual PlatformHandle windowHandle(UInt8 window) = 0;
  virtual PlatformHandle viewHandle(UInt8 window) = 0;
  // Asks view 0..7 to redraw: later when deferred, at once otherwise.
  virtual void displayView(UInt8 window, bool deferred) = 0;

  // Window frame operations on numbers that have a window.
  virtual void setWindowTitle(UInt8 window, const std::string& title) = 0;
  virtual void setWindowTitleVisible(UInt8 window, bool visible) = 0;
  virtual void setWindowPosition(UInt8 window, Int x, Int y) = 0;
  virtual void setWindowContentSize(UInt8 window, Int width, Int height) = 0;
  virtual void bringWindowToFront(UInt8 window) = 0;
  virtual void centerWindow(UInt8 window) = 0;
  virtual void setWindowVisible(UInt8 window, bool visible) = 0;
  virtual WindowFrame windowFrame(UInt8 window) = 0;
  virtual ScreenSize screenSize() = 0;
  virtual void setBorderColor(UInt8 window, t_RGBColor color) = 0;

  // The folder <Name>.app around the executable; resources lie in Contents/Resources.
  virtual std::string bundlePath() = 0;

  // Sounds: plays a sound unless it is still playing; false when it could not be loaded.
  virtual bool playSound(Sound sound) = 0;
  virtual void systemBeep() = 0;

  // The general pasteboard: its plain text, or a picture (the pasteboard is cleared first).
  virtual std::string pasteboardText() = 0;
  virtual void setPasteboardText(const std::string& text) = 0;
  virtual void setPasteboardImage(const t_Image& image) = 0;
  // Edit > Copy Text of graphic window `window`, whose screen t_GetScreen gave as `screen`
  // (carriage returns between lines, one character per font code 0..255). A host puts the
  // text on the pasteboard in the form its platform's programs read, such as
  // unicodeScreenText(window); by default it puts `screen` there as it is.
  virtual void setPasteboardScreenText(UInt8 window, const std::string& screen);

  // The main menu: the item titles of the menu of that title (a separator's title is empty),
  // nothing when there is no such menu; and the removal of the item at a valid position.
  virtual std::optional<std::vector<std::string>> menuItemTitles(const std::string& menuTitle) = 0;
  virtual void deleteMenuItem(const std::string& menuTitle, Int position) = 0;
  // The number of the window in front, 0..12, or NoWindow.
  virtual UInt8 frontWindow() = 0;
  // Runs an open or save panel; the chosen path, empty when the user cancels.
  virtual std::string runFilePanel(const FilePanelRequest& request) = 0;

  // The text views of windows 8 (pasteboard), 9 (virtual printer) and 10 (system console):
  // the text, appending to it and emptying it. Nothing or false when the view is missing.
  virtual std::optional<std::string> textViewText(UInt8 window) = 0;
  virtual bool appendToTextView(UInt8 window, const std::string& text) = 0;
  virtual bool clearTextView(UInt8 window) = 0;
  // Empties the pasteboard window's text view and gives it a fixed-pitch font and plain input
  // (no substitution of quotes, dashes or text, no link detection).
  virtual void preparePasteboardView() = 0;

  // The absolute clock in seconds since 1 January 2001, and the cryptographic random source.
  virtual double absoluteTime();
  virtual std::uint32_t randomWord();
};

// Installs the host; the application does this once before the program starts.
void setHost(Host& host);
// The installed host; until one is installed, a host without any window stands in.
Host& host();

// ---------------------------------------------------------------------------------------------
// What a host asks of the runtime

// The launch sequence, run once by every host on its interface thread after setHost: logs
// "applicationWillFinishLaunching: Called." and names the thread "AppDelegate" when it is
// thread number 1; logs "applicationDidFinishLaunching: Start.", runs initrvtools, keeps
// `titleBarDelta` (the height that an auxiliary window's title bar and margins add, for laying
// out its text) as TitleBarDelta, logs "Program: Start.", starts `program` on the program
// thread with its 1 GiB stack, logs "applicationDidFinishLaunching: End." and sets
// LaunchFinished.
void runLaunchSequence(std::function<void()> program, Int titleBarDelta = 0);
// The end of the application: logs "applicationWillTerminate: Called.", calls the
// TerminationHandler, then the steps added below, in the order they were added.
void runTerminationSequence();
// A step of the runtime's libraries for the end of the application, such as finishing the
// files of recordings; it runs on the thread that ends the application.
void addTerminationStep(std::function<void()> step);
// How many program threads (started by startprocess) have not yet ended.
int runningProgramThreads();

// The <Name>.app folder around the running executable (<Name>.app/Contents/MacOS/program), or
// the executable's own folder when it lies in no bundle. Resources lie in Contents/Resources.
std::string bundleAroundExecutable();

// The log goes to standard output, one writer at a time, flushed after every write. A sink
// takes its place (an empty sink gives standard output back); a mirror sees every write as
// well, wherever it goes. Both are called under the log's lock, on the thread that logs, with
// the text as written (a line may come in pieces): they must not log themselves.
void setLogSink(std::function<void(std::string_view)> sink);
void setLogMirror(std::function<void(std::string_view)> mirror);

// A number that changes whenever an operation of the runtime writes graphic window `window`'s
// picture, its memory or its visibility. A view whose picture was composed at one version need
// not compose again while the version stays, except for what a program writes straight into
// VideoMemory, which no operation sees. 0 for numbers above 7.
std::uint64_t pictureVersion(UInt8 window);

}  // namespace rvtools
