// The host on Qt: window lookup, frames, visibility, the border colour, the screen, the
// pasteboard, sounds and the bundle path, each carried to the GUI thread.
#include "shell/qt_host.hpp"

#include <QApplication>
#include <QClipboard>
#include <QScreen>
#include <QThread>
#include <algorithm>

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

// The <Name>.app folder around the executable (<Name>.app/Contents/MacOS/program), or the
// executable's folder when it lies in no bundle.
std::string bundleAroundExecutable() {
  QString folder = QCoreApplication::applicationDirPath();
  const QString contents = QStringLiteral("/Contents/MacOS");
  if (folder.size() > contents.size() && folder.endsWith(contents)) folder.chop(contents.size());
  return folder.toStdString();
}

}  // namespace

QtHost::QtHost(AppDelegate& delegate)
    : delegate_(delegate),
      bundlePath_(bundleAroundExecutable()),
      sounds_(std::make_unique<SoundPlayer>(bundlePath_ + "/Contents/Resources")) {}

bool QtHost::isInterfaceThread() const {
  const QCoreApplication* application = QCoreApplication::instance();
  return application != nullptr && QThread::currentThread() == application->thread();
}

void QtHost::runOnInterfaceThread(const std::function<void()>& work) {
  if (isInterfaceThread()) {
    work();
    return;
  }
  QCoreApplication* application = QCoreApplication::instance();
  if (application == nullptr) return;
  QMetaObject::invokeMethod(application, work, Qt::BlockingQueuedConnection);
}

void QtHost::onWindow(UInt8 window, const std::function<void(QWidget&)>& work) {
  runOnInterfaceThread([&] {
    if (QWidget* target = delegate_.window(window)) work(*target);
  });
}

PlatformHandle QtHost::windowHandle(UInt8 window) {
  PlatformHandle handle = nullptr;
  runOnInterfaceThread([&] { handle = delegate_.window(window); });
  return handle;
}

PlatformHandle QtHost::viewHandle(UInt8 window) {
  PlatformHandle handle = nullptr;
  runOnInterfaceThread([&] { handle = delegate_.view(window); });
  return handle;
}

void QtHost::displayView(UInt8 window, bool deferred) {
  if (window >= 8) return;
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
  onWindow(window, [&](QWidget& target) { target.setWindowTitle(QString::fromStdString(title)); });
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
    target.resize(clampedExtent(width), clampedExtent(height));
    // A hidden window gets no resize event; its view is placed for the new size at once.
    if (window < 8) static_cast<GraphicWindow&>(target).placeView();
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

std::string QtHost::pasteboardText() {
  std::string text;
  runOnInterfaceThread([&] { text = QGuiApplication::clipboard()->text().toStdString(); });
  return text;
}

void QtHost::setPasteboardText(const std::string& text) {
  runOnInterfaceThread(
      [&] { QGuiApplication::clipboard()->setText(QString::fromStdString(text)); });
}

}  // namespace rvtools::shell
