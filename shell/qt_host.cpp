// SPDX-License-Identifier: MIT
// The host on Qt: window lookup, frames, visibility, the border colour, the screen, the
// pasteboard, menus, file panels, the auxiliary text views, sounds and the bundle path, each
// carried to the GUI thread.
#include "shell/qt_host.hpp"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QImage>
#include <QMenu>
#include <QScreen>
#include <algorithm>
#include <memory>

#include "rvtools/host.hpp"
#include "shell/dialogs.hpp"
#include "shell/text_windows.hpp"

namespace rvtools::shell {
namespace {

// Window sizes beyond what a window system takes are clamped, as are positions.
constexpr Int LargestExtent = QWIDGETSIZE_MAX;
constexpr Int LargestPosition = 1 << 24;

int clampedExtent(Int extent) {
  return static_cast<int>(std::clamp<Int>(extent, 1, LargestExtent));
}

int clampedPosition(Int position) {
  return static_cast<int>(std::clamp<Int>(position, -LargestPosition, LargestPosition));
}

// The pasteboard's text view shows text as it is, in a fixed-pitch font of 12 points.
constexpr int PasteboardFontSize = 12;

// A file dialog's filter for types such as "txt,png": "Files (*.txt *.png)"; empty for all.
QString fileFilter(const std::string& fileTypes) {
  QStringList patterns;
  for (const QString& type : QString::fromStdString(fileTypes).split(',', Qt::SkipEmptyParts)) {
    patterns.append("*." + type.trimmed());
  }
  return patterns.isEmpty() ? QString() : "Files (" + patterns.join(' ') + ")";
}

QImage imageOf(const t_Image& picture) {
  QImage image(static_cast<int>(picture.Width), static_cast<int>(picture.Height),
               QImage::Format_ARGB32);
  const UInt8* pixel = picture.Pixels.data();
  for (int y = 0; y < image.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x, pixel += 4) {
      line[x] = qRgba(pixel[1], pixel[2], pixel[3], pixel[0]);
    }
  }
  return image;
}

// Wakes the GUI thread for work handed over to it: an event posted to this receiver, which
// lives on the GUI thread, runs the work there. The work itself passes through InterfaceWork's
// own lock, which every thread checker can follow (Qt hands the event over under locks of its
// own, which it cannot).
class HandedOverWorkReceiver final : public QObject {
 public:
  explicit HandedOverWorkReceiver(InterfaceWork& work) : work_(work) {}

 protected:
  void customEvent(QEvent*) override { work_.runHandedOver(); }

 private:
  InterfaceWork& work_;
};

}  // namespace

// The receiver belongs to the thread that creates it: this one, the GUI thread.
QtHost::QtHost(AppDelegate& delegate)
    : delegate_(delegate),
      bundlePath_(bundleAroundExecutable()),
      sounds_(std::make_unique<SoundPlayer>(bundlePath_ + "/Contents/Resources")),
      work_([this] {
        QCoreApplication::postEvent(receiver_.get(),
                                    std::make_unique<QEvent>(QEvent::User).release());
      }),
      receiver_(std::make_unique<HandedOverWorkReceiver>(work_)) {}

QtHost::~QtHost() = default;

bool QtHost::isInterfaceThread() const {
  return work_.isInterfaceThread();
}

// Once the application object is gone nothing runs on the GUI thread any more: the work is
// dropped rather than waited for.
void QtHost::runOnInterfaceThread(const std::function<void()>& work) {
  if (!isInterfaceThread() && QCoreApplication::instance() == nullptr) return;
  work_.run(work);
}

void QtHost::onWindow(UInt8 window, const std::function<void(QWidget&)>& work) {
  runOnInterfaceThread([&] {
    if (QWidget* target = delegate_.window(window)) work(*target);
  });
}

// The delegate's windows and views are made before any program thread starts and are never
// replaced, so any thread may look them up without asking the GUI thread.
PlatformHandle QtHost::windowHandle(UInt8 window) {
  return delegate_.window(window);
}

PlatformHandle QtHost::viewHandle(UInt8 window) {
  return delegate_.view(window);
}

// A refresh of an unchanged picture costs neither a composition nor a paint, nor a call to the
// GUI thread.
void QtHost::displayView(UInt8 window, bool deferred) {
  if (window >= 8) return;
  if (deferred && delegate_.view(window)->pictureIsCurrent()) return;
  onWindow(window, [deferred](QWidget& target) {
    auto& graphicWindow = static_cast<GraphicWindow&>(target);
    graphicWindow.placeView();
    if (deferred) {
      graphicWindow.view().update();
    } else {
      graphicWindow.view().repaint();
    }
  });
}

void QtHost::setWindowTitle(UInt8 window, const std::string& title) {
  onWindow(window, [&](QWidget& target) {
    if (window < 8) {
      static_cast<GraphicWindow&>(target).setTitle(QString::fromStdString(title));
    } else {
      target.setWindowTitle(QString::fromStdString(title));
    }
  });
}

void QtHost::setWindowTitleVisible(UInt8 window, bool visible) {
  onWindow(window, [visible](QWidget& target) {
    if (target.windowFlags().testFlag(Qt::FramelessWindowHint) == !visible) return;
    // Changing the flags hides the window; it is shown again if it was on screen.
    const bool shown = target.isVisible();
    target.setWindowFlag(Qt::FramelessWindowHint, !visible);
    if (shown) target.show();
  });
}

void QtHost::setWindowPosition(UInt8 window, Int x, Int y) {
  onWindow(window,
           [x, y](QWidget& target) { target.move(clampedPosition(x), clampedPosition(y)); });
}

void QtHost::setWindowContentSize(UInt8 window, Int width, Int height) {
  onWindow(window, [window, width, height](QWidget& target) {
    if (window >= 8) {
      target.resize(clampedExtent(width), clampedExtent(height));
      return;
    }
    auto& graphicWindow = static_cast<GraphicWindow&>(target);
    graphicWindow.resizeContent(clampedExtent(width), clampedExtent(height));
    // A hidden window gets no resize event; its view is placed for the new size at once.
    graphicWindow.placeView();
  });
}

void QtHost::bringWindowToFront(UInt8 window) {
  onWindow(window, [](QWidget& target) {
    target.show();
    target.raise();
    target.activateWindow();
  });
}

void QtHost::centerWindow(UInt8 window) {
  onWindow(window, [](QWidget& target) {
    const QScreen* screen = target.screen();
    if (screen == nullptr) return;
    QRect frame = target.frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    target.move(frame.topLeft());
  });
}

void QtHost::setWindowVisible(UInt8 window, bool visible) {
  onWindow(window, [visible](QWidget& target) { target.setVisible(visible); });
}

WindowFrame QtHost::windowFrame(UInt8 window) {
  WindowFrame frame;
  onWindow(window, [&](QWidget& target) {
    const QRect geometry = target.frameGeometry();
    frame = {geometry.x(), geometry.y(), geometry.width(), geometry.height(), target.isVisible()};
  });
  return frame;
}

ScreenSize QtHost::screenSize() {
  ScreenSize size;
  runOnInterfaceThread([&] {
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
      size = {screen->size().width(), screen->size().height()};
    }
  });
  return size;
}

void QtHost::setBorderColor(UInt8 window, t_RGBColor color) {
  onWindow(window, [color](QWidget& target) {
    QPalette palette = target.palette();
    palette.setColor(QPalette::Window, QColor(color.Red, color.Green, color.Blue, color.Alpha));
    target.setPalette(palette);
    target.setAutoFillBackground(true);
  });
}

std::string QtHost::bundlePath() {
  return bundlePath_;
}

bool QtHost::playSound(Sound sound) {
  return sounds_->play(sound);
}

void QtHost::systemBeep() {
  runOnInterfaceThread([] { QApplication::beep(); });
}

// The sink is made on the GUI thread, whose event loop then feeds it.
bool QtHost::startSoundOutput() {
  bool started = false;
  runOnInterfaceThread([&] {
    if (!tones_) tones_ = ToneOutput::start();
    started = tones_ != nullptr;
  });
  return started;
}

std::string QtHost::pasteboardText() {
  std::string text;
  runOnInterfaceThread([&] { text = QGuiApplication::clipboard()->text().toStdString(); });
  return text;
}

void QtHost::setPasteboardText(const std::string& text) {
  runOnInterfaceThread(
      [&] { QGuiApplication::clipboard()->setText(QString::fromStdString(text)); });
}

// Programs on Linux read plain UTF-8 with line feeds, so the screen goes there as the
// characters its fonts show.
void QtHost::setPasteboardScreenText(UInt8 window, const std::string&) {
  setPasteboardText(unicodeScreenText(window));
}

void QtHost::setPasteboardImage(const t_Image& image) {
  const bool complete =
      image.Width > 0 && image.Height > 0 &&
      image.Pixels.size() == static_cast<std::size_t>(image.Width * image.Height * 4);
  if (!complete) return;
  runOnInterfaceThread([&] {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setImage(imageOf(image));
  });
}

std::optional<std::vector<std::string>> QtHost::menuItemTitles(const std::string& menuTitle) {
  std::optional<std::vector<std::string>> titles;
  runOnInterfaceThread([&] {
    const QMenu* menu = delegate_.menuTitled(QString::fromStdString(menuTitle));
    if (menu == nullptr) return;
    titles.emplace();
    for (const QAction* item : menu->actions()) titles->push_back(item->text().toStdString());
  });
  return titles;
}

void QtHost::deleteMenuItem(const std::string& menuTitle, Int position) {
  runOnInterfaceThread([&] {
    QMenu* menu = delegate_.menuTitled(QString::fromStdString(menuTitle));
    if (menu == nullptr) return;
    const QList<QAction*> items = menu->actions();
    if (position >= 0 && position < items.size()) menu->removeAction(items[position]);
  });
}

UInt8 QtHost::frontWindow() {
  UInt8 front = NoWindow;
  runOnInterfaceThread([&] { front = delegate_.windowNumber(QApplication::activeWindow()); });
  return front;
}

std::string QtHost::runFilePanel(const FilePanelRequest& request) {
  QString path;
  runOnInterfaceThread([&] {
    path = askForFile(QApplication::activeWindow(), {request.Save,
                                                     QString::fromStdString(request.Title),
                                                     QString::fromStdString(request.Note),
                                                     QString::fromStdString(request.FileName),
                                                     fileFilter(request.FileTypes),
                                                     {}});
  });
  return path.toStdString();
}

bool QtHost::onTextView(UInt8 window, const std::function<void(QPlainTextEdit&)>& work) {
  bool found = false;
  runOnInterfaceThread([&] {
    QPlainTextEdit* view = delegate_.textView(window);
    if (view == nullptr) return;
    found = true;
    if (window == SystemConsoleWindowNumber) delegate_.systemConsole().showPendingLog();
    work(*view);
  });
  return found;
}

std::optional<std::string> QtHost::textViewText(UInt8 window) {
  std::string text;
  if (!onTextView(window, [&](QPlainTextEdit& view) { text = view.toPlainText().toStdString(); })) {
    return std::nullopt;
  }
  return text;
}

bool QtHost::appendToTextView(UInt8 window, const std::string& text) {
  return onTextView(window, [&](QPlainTextEdit& view) {
    appendFollowingEnd(view, QString::fromStdString(text));
  });
}

bool QtHost::clearTextView(UInt8 window) {
  return onTextView(window, [](QPlainTextEdit& view) {
    view.clear();
    view.viewport()->update();
  });
}

// A plain-text view substitutes nothing and detects no links, so only the font and the text
// need setting; the text is the pasteboard's once the window is shown.
void QtHost::preparePasteboardView() {
  onTextView(PasteboardWindowNumber, [this](QPlainTextEdit& view) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(PasteboardFontSize);
    view.setFont(font);
    delegate_.pasteboard().reset();
  });
}

}  // namespace rvtools::shell
