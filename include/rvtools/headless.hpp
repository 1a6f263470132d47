// SPDX-License-Identifier: MIT
// rvtools: the headless host, for tests, benchmarks and programs without a display.
//
// It keeps eight off-screen views: asking a view to redraw composes the window's image into
// that view's buffer at once, on the calling thread. Window frames, titles, border colours and
// sounds are recorded so that a caller can look at them. It keeps the English menu set of the
// desktop host in memory and the texts of the pasteboard, virtual printer and system console.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "rvtools/host.hpp"
#include "rvtools/host_support.hpp"

namespace rvtools {

namespace headless {
class SoundFile;
}

class HeadlessHost : public InMemoryHost {
 public:
  // Resources are looked up in bundlePath/Contents/Resources; an empty path means the
  // <Name>.app folder around the running executable.
  explicit HeadlessHost(std::string bundlePath = {});
  ~HeadlessHost() override;

  // What the host records about window 0..12.
  struct WindowState {
    std::string Title;
    bool TitleVisible = true;
    WindowFrame Frame;
    t_RGBColor Border;
    bool HasView = false;      // 0..7 only
    int Redraws = 0;           // images composed for the view
    std::vector<UInt8> Image;  // the last composed image, bytes A, R, G, B
  };

  // The main menu, the desktop's at first (MenuSet).
  using Menu = MenuSet::Menu;
  using MenuItem = MenuSet::Item;
  std::vector<Menu> menus() const;
  void setMenus(std::vector<Menu> menus);

  // Takes the text view of window 8, 9 or 10 away (or gives it back, empty).
  void setTextViewPresent(UInt8 window, bool present);
  // The picture last put on the pasteboard; empty after text was put there.
  t_Image pasteboardImage() const;
  // The path that the next file panels answer, and the panel last shown.
  void setFilePanelAnswer(std::string path);
  FilePanelRequest lastFilePanel() const;

  // A copy of what the host holds for a window; an empty record for numbers above 12.
  WindowState windowState(UInt8 window) const;
  // Takes view 0..7 away (or gives it back), as a platform without that view would.
  void setViewPresent(UInt8 window, bool present);
  int beeps() const;
  int clicks() const;
  // The WAV file that the audio output writes, set before the program first sounds; without
  // one the host has no audio output. It holds the sound in the program's time from the first
  // tone on, 16-bit mono, and is finished by finishSoundOutput.
  void setSoundFile(std::string path);
  void finishSoundOutput();
  // How many samples that were not silent the audio output has written.
  std::int64_t audibleSamplesWritten() const;

  // The interface thread is whichever thread calls; a view redraws at once, composing the
  // window's picture into its buffer.
  bool isInterfaceThread() const override;
  void runOnInterfaceThread(const std::function<void()>& work) override;
  void displayView(UInt8 window, bool deferred) override;

  // The optional parts that frames, menus and text views in memory leave open.
  PlatformHandle windowHandle(UInt8 window) override;
  PlatformHandle viewHandle(UInt8 window) override;
  std::string bundlePath() override;
  bool playSound(Sound sound) override;
  void systemBeep() override;
  bool startSoundOutput() override;
  void setPasteboardText(const std::string& text) override;
  void setPasteboardImage(const t_Image& image) override;
  std::string runFilePanel(const FilePanelRequest& request) override;

 private:
  // What the host keeps of view 0..7.
  struct View {
    bool Present = true;
    int Redraws = 0;
    std::vector<UInt8> Image;
  };

  InterfaceWork work_;
  const std::string bundlePath_;
  mutable std::mutex mutex_;  // guards what follows
  std::array<View, 8> views_;
  t_Image pasteboardImage_;
  std::string filePanelAnswer_;
  FilePanelRequest lastFilePanel_;
  int beeps_ = 0;
  int clicks_ = 0;
  std::string soundPath_;
  std::unique_ptr<headless::SoundFile> soundFile_;
};

// The whole main of a program without a display: installs a headless host, runs the launch
// sequence, which starts `entry` on the program thread, and returns 0 when the program has
// ended, after the termination sequence; 2 when the command line asks for something it cannot
// do. Before the program starts it seeds the random numbers, if asked:
//   --seed <n>        t_Randomize(n), so that the program draws the same numbers every run
// Once the program's first window is up it starts recording it, if asked:
//   --record <path>   the first window as an animated GIF (t_RecordStart) until the program
//                     has ended
// and types, clicks and chooses menu items as the command line says, in that order, each once
// the keys before it have been taken:
//   --keys <text>     types the text; {Left}, {Right}, {Up}, {Down}, {Home}, {End}, {PageUp},
//                     {PageDown}, {Delete}, {Backspace}, {Return}, {Enter}, {Escape}, {Tab},
//                     {F1}..{F12} are keys without text; \r \n \t \e (Escape) \\ \{ and
//                     \xNN are escapes; {wait <ms>} pauses before the next key. Each key is
//                     held (t_KeyDown) from its press until the next key goes down
//   --click <x>,<y>   a left click at pixel (x, y) of the first window's drawing area
//   --menu <item>     chooses the menu item of that title
// When the program has ended it leaves, if asked:
//   --sound <path>    the sound the program played, as a WAV file (HeadlessHost::setSoundFile)
//   --picture <path>  the first window's picture as a PNG file (t_SavePicture)
//   --screen <path>   its text screen (unicodeScreenText), an empty line, and its colour bytes
//                     (screenColorText)
// Arguments it does not know are left to the program.
int runHeadless(int argc, char** argv, std::function<void()> entry);

}  // namespace rvtools
