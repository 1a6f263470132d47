// SPDX-License-Identifier: MIT
// Internal: the application delegate. It owns every window of the interface and holds the 21
// outlets under their own names, runs the launch sequence, maps platform windows to window
// numbers, lays out the auxiliary windows when they are resized and places them when they first
// open, reports close boxes of the graphic windows to the runtime, and passes menu choices on.
// The menus are those of the main window's form; every other window shows them in a menu bar of
// its own. Items with a tag go to the runtime; the others (and Quit) are the host's own.
#pragma once

#include <QMainWindow>
#include <QObject>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>

#include "rvtools/host.hpp"
#include "shell/desktop_actions.hpp"
#include "shell/graphic_window.hpp"
#include "shell/text_windows.hpp"

class QAbstractScrollArea;
class QAction;
class QLabel;
class QMenu;
class QMenuBar;
class QPlainTextEdit;

namespace Ui {
class MainWindow;
class PasteboardWindow;
class PreferencesWindow;
class SystemConsoleWindow;
class VirtualPrinterWindow;
}  // namespace Ui

namespace rvtools::shell {

class AppDelegate final : public QObject {
 public:
  // Builds all windows, hidden. `programEntry` is the program that the launch starts.
  explicit AppDelegate(std::function<void()> programEntry);
  ~AppDelegate() override;

  // Runs the launch sequence, which starts the program.
  void applicationDidFinishLaunching();
  void applicationWillTerminate();

  // The window of number 0..12, or null.
  QWidget* window(UInt8 number) const;
  // The view of graphic window 0..7, or null.
  GraphicView* view(UInt8 number) const;
  // Graphic window 0..7, or null.
  GraphicWindow* graphicWindow(UInt8 number) const;
  // The number of a platform window; 255 when it belongs to no outlet.
  UInt8 windowNumber(const QWidget* window) const;
  // Lays out the auxiliary window that is the application's active window.
  void windowDidResize();

  // The menus of the main menu, in order, and the one of that title (null when none).
  QList<QMenu*> menus() const;
  QMenu* menuTitled(const QString& title) const;
  // The text view of window 8, 9 or 10, or null.
  QPlainTextEdit* textView(UInt8 number) const;
  // A menu item was chosen: passes it to the runtime's menu handler.
  void MenuHandler(QAction* sender);
  // File > Quit, which every window answers even when a program removed it from the menu.
  QAction* quitItem() const;

  // What the system console and the pasteboard window show, and the host's own menu items.
  SystemConsoleFeed& systemConsole() { return *systemConsole_; }
  PasteboardMirror& pasteboard() { return *pasteboard_; }
  DesktopActions& desktopActions() { return *desktopActions_; }

  // The outlets: filled when the windows are built, never replaced.
  GraphicView* t_View00 = nullptr;
  GraphicView* t_View01 = nullptr;
  GraphicView* t_View02 = nullptr;
  GraphicView* t_View03 = nullptr;
  GraphicView* t_View04 = nullptr;
  GraphicView* t_View05 = nullptr;
  GraphicView* t_View06 = nullptr;
  GraphicView* t_View07 = nullptr;
  QWidget* VirtualPrinterWindow = nullptr;
  QAbstractScrollArea* VirtualPrinterScrollView = nullptr;
  QPlainTextEdit* VirtualPrinterTextView = nullptr;
  QLabel* VirtualPrinterRuler = nullptr;
  QWidget* SystemConsoleWindow = nullptr;
  QAbstractScrollArea* SystemConsoleScrollView = nullptr;
  QPlainTextEdit* SystemConsoleTextView = nullptr;
  QLabel* SystemConsoleRuler = nullptr;
  QWidget* PasteboardWindow = nullptr;
  QAbstractScrollArea* PasteboardScrollView = nullptr;
  QPlainTextEdit* PasteboardTextView = nullptr;
  QMainWindow* MainWindow = nullptr;
  QWidget* PreferencesWindow = nullptr;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildGraphicWindows();
  void buildAuxiliaryWindows();
  void watchWindows();
  void addMenuBars();
  void feedTextWindows();
  void connectMenuItems();
  // Places auxiliary window `number` when it opens for the first time and nobody placed it.
  void placeAuxiliaryWindow(QWidget& window, UInt8 number);
  // The graphic window in front, else the first one shown; null when none is shown.
  GraphicWindow* frontGraphicWindow() const;
  // The close box of a window: a graphic window reports it and stays; others just hide.
  bool windowShouldClose(QWidget* window);
  std::array<GraphicView*, 8> views() const;

  std::function<void()> programEntry_;
  std::array<std::unique_ptr<GraphicWindow>, 8> graphicWindows_;
  std::unique_ptr<QWidget> virtualPrinterWindow_, systemConsoleWindow_, pasteboardWindow_,
      preferencesWindow_;
  std::unique_ptr<QMainWindow> mainWindow_;
  std::unique_ptr<Ui::VirtualPrinterWindow> virtualPrinterForm_;
  std::unique_ptr<Ui::SystemConsoleWindow> systemConsoleForm_;
  std::unique_ptr<Ui::PasteboardWindow> pasteboardForm_;
  std::unique_ptr<Ui::PreferencesWindow> preferencesForm_;
  std::unique_ptr<Ui::MainWindow> mainForm_;
  // Windows 0..11; the main window has the bar of its form. Destroyed before the windows.
  std::array<std::unique_ptr<QMenuBar>, MainWindowNumber> menuBars_;
  // They use the windows and the menus, so they go first.
  std::unique_ptr<SystemConsoleFeed> systemConsole_;
  std::unique_ptr<PasteboardMirror> pasteboard_;
  std::unique_ptr<DesktopActions> desktopActions_;
};

}  // namespace rvtools::shell
