// SPDX-License-Identifier: MIT
// The application delegate: builds the graphic windows and the auxiliary windows from their
// forms, runs the launch sequence that starts the program thread, answers the window events
// that matter to the runtime (close boxes, resizes, activation) and hands menu choices to the
// runtime. File > Quit (Meta+Q, so that no control key is taken from the program) quits. The
// runtime's log goes to the system console as well.
#include "shell/app_delegate.hpp"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QWindow>

#include "rvtools/host.hpp"
#include "shell/menu_bar.hpp"
#include "shell/window_placement.hpp"
#include "ui_main_window.h"
#include "ui_pasteboard_window.h"
#include "ui_preferences_window.h"
#include "ui_system_console_window.h"
#include "ui_virtual_printer_window.h"

namespace rvtools::shell {
namespace {

// Margins of the auxiliary windows' layout: the pasteboard's text fills the window within 10
// pixels, the printer's and the console's within 20, with a strip of 15 above for the ruler.
constexpr int PasteboardMargin = 10;
constexpr int TextWindowMargin = 20;
constexpr int RulerStrip = 15;
constexpr int RulerInset = 8;
constexpr int RulerHeight = 19;
// Columns of the rulers above the printer's paper and the console: more than a window shows.
constexpr int RulerColumns = 250;

// A window's frame as the layout sees it: the window manager draws the title bar outside the
// widget's geometry, so TitleBarDelta measures what the form puts above the text.
QSize frameSize(const QWidget& window) {
  return window.geometry().size();
}

void placeScrollView(QAbstractScrollArea& scrollView, int margin, int width, int height) {
  const int windowHeight = scrollView.parentWidget()->height();
  scrollView.setGeometry(margin, windowHeight - margin - height, width, height);
}

}  // namespace

AppDelegate::AppDelegate(std::function<void()> programEntry)
    : programEntry_(std::move(programEntry)) {
  setObjectName(QStringLiteral("AppDelegate"));
  buildGraphicWindows();
  buildAuxiliaryWindows();
  addMenuBars();
  feedTextWindows();
  connectMenuItems();
  watchWindows();
  connect(qApp, &QGuiApplication::applicationStateChanged, this,
          [](Qt::ApplicationState state) { ApplicationActive = state == Qt::ApplicationActive; });
}

AppDelegate::~AppDelegate() {
  setLogMirror({});
}

void AppDelegate::buildGraphicWindows() {
  for (UInt8 n = 0; n < 8; ++n) graphicWindows_[n] = std::make_unique<GraphicWindow>(n);
  t_View00 = &graphicWindows_[0]->view();
  t_View01 = &graphicWindows_[1]->view();
  t_View02 = &graphicWindows_[2]->view();
  t_View03 = &graphicWindows_[3]->view();
  t_View04 = &graphicWindows_[4]->view();
  t_View05 = &graphicWindows_[5]->view();
  t_View06 = &graphicWindows_[6]->view();
  t_View07 = &graphicWindows_[7]->view();
}

void AppDelegate::buildAuxiliaryWindows() {
  virtualPrinterWindow_ = std::make_unique<QWidget>();
  virtualPrinterForm_ = std::make_unique<Ui::VirtualPrinterWindow>();
  virtualPrinterForm_->setupUi(virtualPrinterWindow_.get());
  VirtualPrinterWindow = virtualPrinterWindow_.get();
  VirtualPrinterTextView = virtualPrinterForm_->VirtualPrinterTextView;
  VirtualPrinterScrollView = VirtualPrinterTextView;
  VirtualPrinterRuler = virtualPrinterForm_->VirtualPrinterRuler;
  VirtualPrinterRuler->setText(columnRuler(RulerColumns));

  systemConsoleWindow_ = std::make_unique<QWidget>();
  systemConsoleForm_ = std::make_unique<Ui::SystemConsoleWindow>();
  systemConsoleForm_->setupUi(systemConsoleWindow_.get());
  SystemConsoleWindow = systemConsoleWindow_.get();
  SystemConsoleTextView = systemConsoleForm_->SystemConsoleTextView;
  SystemConsoleScrollView = SystemConsoleTextView;
  SystemConsoleRuler = systemConsoleForm_->SystemConsoleRuler;
  SystemConsoleRuler->setText(columnRuler(RulerColumns));

  pasteboardWindow_ = std::make_unique<QWidget>();
  pasteboardForm_ = std::make_unique<Ui::PasteboardWindow>();
  pasteboardForm_->setupUi(pasteboardWindow_.get());
  PasteboardWindow = pasteboardWindow_.get();
  PasteboardTextView = pasteboardForm_->PasteboardTextView;
  PasteboardScrollView = PasteboardTextView;

  preferencesWindow_ = std::make_unique<QWidget>();
  preferencesForm_ = std::make_unique<Ui::PreferencesWindow>();
  preferencesForm_->setupUi(preferencesWindow_.get());
  PreferencesWindow = preferencesWindow_.get();

  mainWindow_ = std::make_unique<QMainWindow>();
  mainForm_ = std::make_unique<Ui::MainWindow>();
  mainForm_->setupUi(mainWindow_.get());
  MainWindow = mainWindow_.get();
}

// The auxiliary windows' forms place their content as if there were no bar; it moves down.
void AppDelegate::addMenuBars() {
  const QList<QMenu*> sharedMenus = menus();
  for (UInt8 n = 0; n < MainWindowNumber; ++n) {
    menuBars_[n] = sharedMenuBar(*window(n), sharedMenus);
    if (n < 8) {
      graphicWindows_[n]->setMenuBar(menuBars_[n].get());
    } else {
      makeRoomForMenuBar(*window(n), *menuBars_[n]);
    }
  }
}

void AppDelegate::feedTextWindows() {
  systemConsole_ = std::make_unique<SystemConsoleFeed>(*SystemConsoleTextView);
  setLogMirror(
      [console = systemConsole_.get()](std::string_view text) { console->takeLogText(text); });
  pasteboard_ = std::make_unique<PasteboardMirror>(*PasteboardTextView);
}

// The enabled states follow the program and the window in front; they are brought up to date
// whenever a menu opens and whenever another window comes to the front, for the shortcuts.
void AppDelegate::connectMenuItems() {
  // Quitting ends the event loop at once instead of asking every window to close first: the
  // graphic windows refuse to close, and their refusal would report close-box clicks.
  connect(
      mainForm_->actionQuit, &QAction::triggered, qApp, [] { QCoreApplication::exit(0); },
      Qt::QueuedConnection);
  desktopActions_ = std::make_unique<DesktopActions>(
      *this, DesktopActions::Items{mainForm_->actionSavePicture, mainForm_->actionSaveText,
                                   mainForm_->actionPrint, mainForm_->actionStartRecording,
                                   mainForm_->actionStopRecording, mainForm_->actionFullScreen});
  for (QMenu* menu : menus()) {
    connect(menu, &QMenu::aboutToShow, desktopActions_.get(), &DesktopActions::updateMenuItems);
    for (QAction* item : menu->actions()) {
      const bool runtimeItem = !item->isSeparator() && item->property("tag").isValid();
      if (!runtimeItem || item == mainForm_->actionQuit) continue;
      connect(item, &QAction::triggered, this, [this, item] { MenuHandler(item); });
    }
  }
  connect(qApp, &QGuiApplication::focusWindowChanged, desktopActions_.get(),
          &DesktopActions::updateMenuItems);
  desktopActions_->updateMenuItems();
}

QAction* AppDelegate::quitItem() const {
  return mainForm_->actionQuit;
}

// Quit also belongs to every window itself, so that its key works even when a program has
// removed it from the File menu.
void AppDelegate::watchWindows() {
  for (UInt8 n = 0; n <= MainWindowNumber; ++n) {
    window(n)->installEventFilter(this);
    window(n)->addAction(mainForm_->actionQuit);
  }
}

QList<QMenu*> AppDelegate::menus() const {
  QList<QMenu*> found;
  for (QAction* entry : mainForm_->MainMenu->actions()) {
    if (auto* menu = entry->menu<QMenu*>()) found.append(menu);
  }
  return found;
}

QMenu* AppDelegate::menuTitled(const QString& title) const {
  for (QAction* entry : mainForm_->MainMenu->actions()) {
    auto* menu = entry->menu<QMenu*>();
    if (menu != nullptr && entry->text() == title) return menu;
  }
  return nullptr;
}

QPlainTextEdit* AppDelegate::textView(UInt8 number) const {
  switch (number) {
    case PasteboardWindowNumber:
      return PasteboardTextView;
    case VirtualPrinterWindowNumber:
      return VirtualPrinterTextView;
    case SystemConsoleWindowNumber:
      return SystemConsoleTextView;
    default:
      return nullptr;
  }
}

void AppDelegate::MenuHandler(QAction* sender) {
  const QMenu* holder = nullptr;
  for (const QMenu* menu : menus()) {
    if (menu->actions().contains(sender)) holder = menu;
  }
  t_MenuEventHandler(menuItemOf(*sender, holder));
}

std::array<GraphicView*, 8> AppDelegate::views() const {
  return {t_View00, t_View01, t_View02, t_View03, t_View04, t_View05, t_View06, t_View07};
}

// TitleBarDelta: what the pasteboard window's frame adds to its text view, beyond the margins.
void AppDelegate::applicationDidFinishLaunching() {
  const auto titleBarDelta = static_cast<Int>(frameSize(*PasteboardWindow).height() -
                                              PasteboardScrollView->geometry().height() - 20);
  runLaunchSequence(programEntry_, titleBarDelta);
}

void AppDelegate::applicationWillTerminate() {
  runTerminationSequence();
}

QWidget* AppDelegate::window(UInt8 number) const {
  switch (number) {
    case PasteboardWindowNumber:
      return PasteboardWindow;
    case VirtualPrinterWindowNumber:
      return VirtualPrinterWindow;
    case SystemConsoleWindowNumber:
      return SystemConsoleWindow;
    case PreferencesWindowNumber:
      return PreferencesWindow;
    case MainWindowNumber:
      return MainWindow;
    default:
      return number < 8 ? graphicWindows_[number].get() : nullptr;
  }
}

GraphicView* AppDelegate::view(UInt8 number) const {
  return number < 8 ? views()[number] : nullptr;
}

GraphicWindow* AppDelegate::graphicWindow(UInt8 number) const {
  return number < 8 ? graphicWindows_[number].get() : nullptr;
}

GraphicWindow* AppDelegate::frontGraphicWindow() const {
  if (GraphicWindow* active = graphicWindow(windowNumber(QApplication::activeWindow()))) {
    return active;
  }
  for (const auto& window : graphicWindows_) {
    if (window->isVisible()) return window.get();
  }
  return nullptr;
}

// Auxiliary windows count from the pasteboard (8), so that each has a place of its own.
void AppDelegate::placeAuxiliaryWindow(QWidget& window, UInt8 number) {
  const QScreen* screen = window.screen();
  if (screen == nullptr) return;
  QRect front;
  int keepClear = 0;
  if (const GraphicWindow* graphic = frontGraphicWindow()) {
    front = graphic->frameGeometry();
    keepClear = graphic->geometry().top() - front.top() + graphic->menuBarHeight();
  }
  window.move(auxiliaryWindowPlace(screen->availableGeometry(), window.frameGeometry().size(),
                                   front, keepClear, number - PasteboardWindowNumber));
}

UInt8 AppDelegate::windowNumber(const QWidget* window) const {
  if (window == nullptr) return NoWindow;
  const std::pair<const QWidget*, UInt8> auxiliary[] = {
      {VirtualPrinterWindow, VirtualPrinterWindowNumber},
      {SystemConsoleWindow, SystemConsoleWindowNumber},
      {PasteboardWindow, PasteboardWindowNumber},
      {PreferencesWindow, PreferencesWindowNumber},
      {MainWindow, MainWindowNumber},
  };
  for (const auto& [outlet, number] : auxiliary) {
    if (outlet != nullptr && outlet == window) return number;
  }
  const std::array<GraphicView*, 8> graphicViews = views();
  for (UInt8 n = 0; n < 8; ++n) {
    if (graphicViews[n] != nullptr && graphicViews[n]->window() == window) return n;
  }
  return NoWindow;
}

// The layout follows the application's active window, which is the one being resized whenever
// the user drags a window's edge.
void AppDelegate::windowDidResize() {
  const QWidget* active = QApplication::activeWindow();
  if (active == nullptr) return;
  const QSize frame = frameSize(*active);
  const int width = frame.width(), height = frame.height();
  const int delta = static_cast<int>(TitleBarDelta.load());
  switch (windowNumber(active)) {
    case PasteboardWindowNumber:
      placeScrollView(*PasteboardScrollView, PasteboardMargin, width - 2 * PasteboardMargin,
                      height - 2 * PasteboardMargin - delta);
      break;
    case VirtualPrinterWindowNumber:
      placeScrollView(*VirtualPrinterScrollView, TextWindowMargin, width - 2 * TextWindowMargin,
                      height - 2 * TextWindowMargin - delta - RulerStrip);
      VirtualPrinterRuler->resize(width - 2 * TextWindowMargin - RulerInset, RulerHeight);
      break;
    case SystemConsoleWindowNumber:
      placeScrollView(*SystemConsoleScrollView, TextWindowMargin, width - 2 * TextWindowMargin,
                      height - 2 * TextWindowMargin - delta - RulerStrip);
      SystemConsoleRuler->resize(width - 2 * TextWindowMargin - RulerInset, RulerHeight);
      break;
    default:
      break;
  }
}

bool AppDelegate::windowShouldClose(QWidget* window) {
  const UInt8 number = windowNumber(window);
  if (number >= 8) return true;
  t_MouseEventPostCloseBoxClick(number);
  return false;
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
  auto* window = qobject_cast<QWidget*>(watched);
  if (window == nullptr) return false;
  if (event->type() == QEvent::Close && !windowShouldClose(window)) {
    event->ignore();
    return true;
  }
  if (event->type() == QEvent::Show && !window->testAttribute(Qt::WA_Moved)) {
    const UInt8 number = windowNumber(window);
    if (number >= PasteboardWindowNumber && number <= MainWindowNumber) {
      placeAuxiliaryWindow(*window, number);
    }
  }
  if (event->type() == QEvent::Resize) {
    const UInt8 number = windowNumber(window);
    if (number >= 8 && number < MainWindowNumber) {
      menuBars_[number]->resize(window->width(), menuBars_[number]->height());
    }
    windowDidResize();
  }
  return false;
}

}  // namespace rvtools::shell
