// SPDX-License-Identifier: MIT
// Internal: the host on Qt. Platform work runs on the GUI thread: directly when the caller is
// there, else handed over to it and waited for. Windows, views, menus and text views are those of
// the application delegate; sounds come from the bundle's resources; tones and music from the
// runtime play through Qt Multimedia.
#pragma once

#include <QPlainTextEdit>
#include <memory>

#include "rvtools/host.hpp"
#include "shell/app_delegate.hpp"
#include "shell/sound_player.hpp"
#include "shell/tone_output.hpp"

namespace rvtools::shell {

class QtHost final : public Host {
 public:
  // Create it on the GUI thread, after the application object.
  explicit QtHost(AppDelegate& delegate);
  ~QtHost() override;

  bool isInterfaceThread() const override;
  void runOnInterfaceThread(const std::function<void()>& work) override;
  PlatformHandle windowHandle(UInt8 window) override;
  PlatformHandle viewHandle(UInt8 window) override;
  void displayView(UInt8 window, bool deferred) override;
  void setWindowTitle(UInt8 window, const std::string& title) override;
  void setWindowTitleVisible(UInt8 window, bool visible) override;
  void setWindowPosition(UInt8 window, Int x, Int y) override;
  void setWindowContentSize(UInt8 window, Int width, Int height) override;
  void bringWindowToFront(UInt8 window) override;
  void centerWindow(UInt8 window) override;
  void setWindowVisible(UInt8 window, bool visible) override;
  WindowFrame windowFrame(UInt8 window) override;
  ScreenSize screenSize() override;
  void setBorderColor(UInt8 window, t_RGBColor color) override;
  std::string bundlePath() override;
  bool playSound(Sound sound) override;
  void systemBeep() override;
  bool startSoundOutput() override;
  std::string pasteboardText() override;
  void setPasteboardText(const std::string& text) override;
  void setPasteboardImage(const t_Image& image) override;
  void setPasteboardScreenText(UInt8 window, const std::string& screen) override;
  std::optional<std::vector<std::string>> menuItemTitles(const std::string& menuTitle) override;
  void deleteMenuItem(const std::string& menuTitle, Int position) override;
  UInt8 frontWindow() override;
  std::string runFilePanel(const FilePanelRequest& request) override;
  std::optional<std::string> textViewText(UInt8 window) override;
  bool appendToTextView(UInt8 window, const std::string& text) override;
  bool clearTextView(UInt8 window) override;
  void preparePasteboardView() override;

 private:
  // Runs `work` on the window of number `window` on the GUI thread, if there is that window.
  void onWindow(UInt8 window, const std::function<void(QWidget&)>& work);
  // Runs `work` on the text view of window 8, 9 or 10 on the GUI thread; false without one.
  bool onTextView(UInt8 window, const std::function<void(QPlainTextEdit&)>& work);

  AppDelegate& delegate_;
  std::string bundlePath_;
  std::unique_ptr<SoundPlayer> sounds_;
  std::unique_ptr<ToneOutput> tones_;  // on the GUI thread only
  InterfaceWork work_;
  std::unique_ptr<QObject> receiver_;
};

}  // namespace rvtools::shell
