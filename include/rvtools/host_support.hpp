// SPDX-License-Identifier: MIT
// rvtools: what hosts share, written once: the work that other threads hand to the interface
// thread, waiting for the program, window frames and auxiliary text views kept in memory for a
// platform that has no place for them, and a file name made from a window's title.
#pragma once

#include <array>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "rvtools/platform.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// Work for the interface thread, for Host::isInterfaceThread and Host::runOnInterfaceThread.
class InterfaceWork {
 public:
  // A host without an interface thread of its own: work runs on the calling thread, one piece
  // at a time, and every thread counts as the interface thread.
  InterfaceWork() = default;
  // A host whose interface thread is the calling one. `wake` is called after work was handed
  // over, on the handing thread; it makes the interface thread call runHandedOver soon.
  explicit InterfaceWork(std::function<void()> wake);

  bool isInterfaceThread() const;
  // Runs `work` on the interface thread and returns when it has run.
  void run(const std::function<void()>& work);
  // Runs the work handed over so far, in order; called by the interface thread.
  void runHandedOver();

 private:
  struct HandedOver {
    const std::function<void()>* Work = nullptr;
    bool Done = false;
  };

  std::function<void()> wake_;
  std::optional<std::thread::id> interfaceThread_;
  std::recursive_mutex callingThreadMutex_;
  std::mutex queueMutex_;
  std::condition_variable done_;
  std::deque<HandedOver*> queue_;
};

// Whether the program is still running: about to start, or a program thread has not ended.
bool programRunning();
// Returns once the program has ended, looking every 10 milliseconds.
void waitForProgramEnd();

// The frames of windows 0..12 kept in memory, for a platform whose windows have no place on a
// screen: what the program sets is what it reads back. The window in front is the one last
// brought there while it stays visible. Any thread may call.
class WindowFrames {
 public:
  explicit WindowFrames(ScreenSize screen = {1920, 1080}) : screen_(screen) {}

  void setTitle(UInt8 window, const std::string& title);
  std::string title(UInt8 window) const;
  void setTitleVisible(UInt8 window, bool visible);
  bool titleVisible(UInt8 window) const;
  void setPosition(UInt8 window, Int x, Int y);
  void setContentSize(UInt8 window, Int width, Int height);
  void setVisible(UInt8 window, bool visible);
  void bringToFront(UInt8 window);
  void center(UInt8 window);
  void setBorderColor(UInt8 window, t_RGBColor color);
  t_RGBColor borderColor(UInt8 window) const;
  // The frame of a number above 12 is empty.
  WindowFrame frame(UInt8 window) const;
  UInt8 front() const;
  ScreenSize screen() const { return screen_; }

 private:
  struct Window {
    std::string Title;
    bool TitleVisible = true;
    WindowFrame Frame;
    t_RGBColor Border;
  };
  static constexpr std::size_t Count = MainWindowNumber + 1;

  const ScreenSize screen_;
  mutable std::mutex mutex_;
  std::array<Window, Count> windows_;
  UInt8 front_ = NoWindow;
};

// The text views of the pasteboard (8), virtual printer (9) and system console (10) windows
// kept in memory, for Host::textViewText, appendToTextView and clearTextView. A view can be
// taken away, as on a platform without it. Any thread may call.
class TextViews {
 public:
  std::optional<std::string> text(UInt8 window) const;
  bool append(UInt8 window, const std::string& text);
  bool clear(UInt8 window);
  void setPresent(UInt8 window, bool present);

 private:
  static std::optional<std::size_t> indexOf(UInt8 window);

  mutable std::mutex mutex_;
  std::array<std::optional<std::string>, 3> views_{"", "", ""};
};

// The main menu kept in memory, for a platform without a menu bar of its own: the desktop's
// menus (File, Edit, Window and the program's own) until the program deletes items, for
// Host::menuItemTitles and Host::deleteMenuItem. Any thread may call.
class MenuSet {
 public:
  // A separator has an empty title and tag 0.
  struct Item {
    std::string Title;
    Int Tag = 0;
    friend bool operator==(const Item&, const Item&) = default;
  };
  struct Menu {
    std::string Title;
    std::vector<Item> Items;
    friend bool operator==(const Menu&, const Menu&) = default;
  };

  // The menus of the desktop host, with their English titles.
  static std::vector<Menu> desktopMenus();

  std::vector<Menu> menus() const;
  void setMenus(std::vector<Menu> menus);
  std::optional<std::vector<std::string>> itemTitles(const std::string& menuTitle) const;
  void deleteItem(const std::string& menuTitle, Int position);

 private:
  mutable std::mutex mutex_;
  std::vector<Menu> menus_ = desktopMenus();
};

// A host whose platform has no place for window frames, a menu bar or the auxiliary windows
// (a terminal, a pipe, no display at all): it keeps them in memory (WindowFrames, MenuSet,
// TextViews), so that a program reads back what it set. A host on such a platform derives from
// it and adds its interface thread and the way it shows pictures: isInterfaceThread,
// runOnInterfaceThread and displayView.
class InMemoryHost : public Host {
 public:
  void setWindowTitle(UInt8 window, const std::string& title) override;
  void setWindowContentSize(UInt8 window, Int width, Int height) override;
  void setWindowVisible(UInt8 window, bool visible) override;
  void bringWindowToFront(UInt8 window) override;
  WindowFrame windowFrame(UInt8 window) override;
  UInt8 frontWindow() override;
  void setWindowTitleVisible(UInt8 window, bool visible) override;
  void setWindowPosition(UInt8 window, Int x, Int y) override;
  void centerWindow(UInt8 window) override;
  ScreenSize screenSize() override;
  void setBorderColor(UInt8 window, t_RGBColor color) override;
  std::optional<std::vector<std::string>> menuItemTitles(const std::string& menuTitle) override;
  void deleteMenuItem(const std::string& menuTitle, Int position) override;
  std::optional<std::string> textViewText(UInt8 window) override;
  bool appendToTextView(UInt8 window, const std::string& text) override;
  bool clearTextView(UInt8 window) override;
  void preparePasteboardView() override;

 protected:
  WindowFrames& frames() { return frames_; }
  const WindowFrames& frames() const { return frames_; }
  MenuSet& menuSet() { return menus_; }
  const MenuSet& menuSet() const { return menus_; }
  TextViews& textViews() { return textViews_; }

 private:
  WindowFrames frames_;
  MenuSet menus_;
  TextViews textViews_;
};

// A file name after the title of window `window`, "<title><extension>": blanks at either end
// are dropped, "/" becomes "-" and control characters "_", and a title that names no file
// gives "Window <window>".
std::string fileNameFromTitle(std::string_view title, UInt8 window, std::string_view extension);

}  // namespace rvtools
