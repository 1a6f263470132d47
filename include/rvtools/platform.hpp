// SPDX-License-Identifier: MIT
// rvtools: the platform a program runs on, as the runtime sees it: the `Host` interface.
//
// The runtime never talks to a windowing system itself. Every platform need goes through the
// host that the application sets once at start-up. The door is narrow and one-way: a host
// implements the few methods every platform must provide (the required core below) and
// overrides of the optional parts only what its platform has; it reads the runtime through
// WindowView (rvtools/window_view.hpp) and writes to it only through the input functions
// (rvtools/input.hpp). rvtools/host.hpp gathers everything a host needs. Every method may be
// called from any thread; a host carries platform work over to its interface thread and waits
// for it.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
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

  // ---- The required core: what every platform provides ----------------------------------

  // Threads: whether the caller is the interface thread, and synchronous work there (at once
  // when called there). InterfaceWork (rvtools/host_support.hpp) is a ready-made queue.
  virtual bool isInterfaceThread() const = 0;
  virtual void runOnInterfaceThread(const std::function<void()>& work) = 0;

  // Shows graphic window 0..7's new picture: later when deferred (the refresh asks this of
  // every window at its rate, so a host skips a picture it already shows), at once otherwise.
  virtual void displayView(UInt8 window, bool deferred) = 0;

  // The basics of the frames of windows 0..12: title, content size (for a graphic window its
  // picture with the border on both sides), visibility, order, and the frame as it is.
  virtual void setWindowTitle(UInt8 window, const std::string& title) = 0;
  virtual void setWindowContentSize(UInt8 window, Int width, Int height) = 0;
  virtual void setWindowVisible(UInt8 window, bool visible) = 0;
  virtual void bringWindowToFront(UInt8 window) = 0;
  virtual WindowFrame windowFrame(UInt8 window) = 0;
  // The number of the window in front, 0..12, or NoWindow.
  virtual UInt8 frontWindow() = 0;

  // ---- Optional parts: each default is what a platform without that part does -------------

  // Window lookup: the platform window of numbers 0..12 and the view of 0..7, or null for a
  // number that has none. By default every number has a window and 0..7 a view, each with a
  // handle of its own.
  virtual PlatformHandle windowHandle(UInt8 window);
  virtual PlatformHandle viewHandle(UInt8 window);

  // More of a window frame: a title bar that can be hidden, a position on a screen, a border
  // colour around the picture. By default there is no screen to place windows on.
  virtual void setWindowTitleVisible(UInt8 window, bool visible);
  virtual void setWindowPosition(UInt8 window, Int x, Int y);
  virtual void centerWindow(UInt8 window);
  virtual ScreenSize screenSize();
  virtual void setBorderColor(UInt8 window, t_RGBColor color);

  // The folder <Name>.app around the executable; resources lie in Contents/Resources. By
  // default the bundle around the running executable (bundleAroundExecutable).
  virtual std::string bundlePath();

  // Sounds: plays a sound unless it is still playing; false when it could not be loaded, and
  // then the runtime beeps instead. By default there are no sounds and the beep is silent.
  virtual bool playSound(Sound sound);
  virtual void systemBeep();
  // Tones and music (rvtools/sound.hpp): starts the platform's audio output, whose own thread
  // then pulls the runtime's samples with pullSoundSamples, mono at SoundSampleRate, for as
  // long as the application runs. False when there is no audio device, as by default: the
  // runtime then plays its queue silently, in real time.
  virtual bool startSoundOutput();

  // The general pasteboard: its plain text, or a picture (the pasteboard is cleared first). By
  // default a pasteboard in memory, so that a program can still copy and paste within itself.
  virtual std::string pasteboardText();
  virtual void setPasteboardText(const std::string& text);
  virtual void setPasteboardImage(const t_Image& image);
  // Edit > Copy Text of graphic window `window`, whose screen t_GetScreen gave as `screen`
  // (carriage returns between lines, one character per font code 0..255). A host puts the
  // text on the pasteboard in the form its platform's programs read, such as
  // unicodeScreenText(window); by default it puts `screen` there as it is.
  virtual void setPasteboardScreenText(UInt8 window, const std::string& screen);

  // The main menu: the item titles of the menu of that title (a separator's title is empty),
  // nothing when there is no such menu; and the removal of the item at a valid position. By
  // default there is no menu. MenuSet (rvtools/host_support.hpp) keeps the desktop's menus in
  // memory for a platform that has no menu bar of its own.
  virtual std::optional<std::vector<std::string>> menuItemTitles(const std::string& menuTitle);
  virtual void deleteMenuItem(const std::string& menuTitle, Int position);
  // Runs an open or save panel; the chosen path, empty when the user cancels (the default).
  virtual std::string runFilePanel(const FilePanelRequest& request);

  // The text views of windows 8 (pasteboard), 9 (virtual printer) and 10 (system console):
  // the text, appending to it and emptying it. Nothing or false when the view is missing, as
  // it is by default; the runtime then logs that the window has no view. TextViews
  // (rvtools/host_support.hpp) keeps them in memory.
  virtual std::optional<std::string> textViewText(UInt8 window);
  virtual bool appendToTextView(UInt8 window, const std::string& text);
  virtual bool clearTextView(UInt8 window);
  // Empties the pasteboard window's text view and gives it a fixed-pitch font and plain input
  // (no substitution of quotes, dashes or text, no link detection).
  virtual void preparePasteboardView();

  // The absolute clock in seconds since 1 January 2001, and the cryptographic random source.
  // By default the system's real-time clock and arc4random.
  virtual double absoluteTime();
  virtual std::uint32_t randomWord();

 private:
  std::mutex pasteboardMutex_;
  std::string pasteboard_;
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
// VideoMemory, which no operation sees (ShownPicture, rvtools/host_support.hpp, composes again
// after a second for that). 0 for numbers above 7.
std::uint64_t pictureVersion(UInt8 window);

}  // namespace rvtools
