// SPDX-License-Identifier: MIT
// Internal: the menu items that the desktop host carries out itself, File > Save Picture…,
// Save Text…, Print…, Start Recording… and Stop Recording and View > Full Screen, and which
// items of the menus are enabled. A graphic window's title carries a sign while it is recorded,
// whoever started the recording.
//
// Like Quit, these items do not go through the runtime's menu handler and queue no menu event.
// An item that can do nothing for the running program at the moment is disabled: Open… and
// Save… until the program has added a menu action entry for them (t_AddMenuAction), items for
// the program until it has installed a menu handler, Show and Hide of a graphic window until
// that window is initialised, and the host's own items unless the window in front suits them.
#pragma once

#include <QObject>
#include <QString>

#include "rvtools/types.hpp"

class QAction;
class QWidget;

namespace rvtools::shell {

class AppDelegate;

class DesktopActions final : public QObject {
 public:
  struct Items {
    QAction* SavePicture = nullptr;
    QAction* SaveText = nullptr;
    QAction* Print = nullptr;
    QAction* StartRecording = nullptr;
    QAction* StopRecording = nullptr;
    QAction* FullScreen = nullptr;
  };

  // Carries out `items`, which belong to the menus of `delegate`.
  DesktopActions(AppDelegate& delegate, const Items& items);
  ~DesktopActions() override;

  // Enables or disables every item of the menus for the window in front and the program.
  void updateMenuItems();

  // A PNG file of the graphic window in front, named in a file dialog after its title.
  void savePicture();
  // A UTF-8 text file: the screen of the graphic window in front as the characters its font
  // shows, or the text of the virtual printer or the system console.
  void saveText();
  // The virtual printer's paper on a printer, or as a PDF file.
  void print();
  // Records the graphic window in front as an animated GIF file named in a file dialog, until
  // stopRecording.
  void startRecording();
  void stopRecording();
  // Shows the graphic window in front on the whole screen, or back in its window.
  void toggleFullScreen();

 private:
  UInt8 frontWindow() const;
  // The title a window has from its program (without a recording's sign).
  QString titleOf(UInt8 window) const;
  QString askWhereToSave(UInt8 window, const QString& title, const QString& kind,
                         const QString& suffix) const;
  bool canSaveText(UInt8 window) const;

  AppDelegate& delegate_;
  Items items_;
};

}  // namespace rvtools::shell
