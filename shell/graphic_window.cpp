// SPDX-License-Identifier: MIT
// The graphic windows and their views: the picture is composed on the interface thread into an
// image kept across frames and drawn with nearest-neighbour scaling. Keys go to the runtime's key
// handler and their releases to its held keys, clicks in the view or in the border to its mouse
// handler in window coordinates.
#include "shell/graphic_window.hpp"

#include <QKeyEvent>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "rvtools/host.hpp"
#include "shell/key_translation.hpp"

namespace rvtools::shell {
namespace {

QString viewName(UInt8 window) {
  return QStringLiteral("View%1").arg(window, 2, 10, QLatin1Char('0'));
}

Int buttonsOf(Qt::MouseButtons buttons) {
  Int bits = 0;
  if (buttons & Qt::LeftButton) bits |= 1;
  if (buttons & Qt::RightButton) bits |= 2;
  if (buttons & ~(Qt::LeftButton | Qt::RightButton)) bits |= 4;
  return bits;
}

bool isReportedButton(Qt::MouseButton button) {
  return button == Qt::LeftButton || button == Qt::RightButton;
}

}  // namespace

GraphicView::GraphicView(UInt8 window, GraphicWindow& owner)
    : QWidget(&owner), window_(window), owner_(owner) {
  setObjectName(viewName(window));
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

bool GraphicView::pictureIsCurrent() const {
  return shown_.isCurrent(WindowView(window_));
}

bool GraphicView::composePicture() {
  const WindowView view(window_);
  const Int width = view.width(), height = view.height();
  const bool drawable =
      width >= 1 && height >= 1 && width <= LargestPictureSide && height <= LargestPictureSide;
  if (drawable && (picture_.width() != width || picture_.height() != height)) {
    picture_ = QImage(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
  }
  if (!drawable || picture_.isNull()) {
    // The composition refuses the size itself and says why.
    shown_.forget();
    return view.composePicture(nullptr, 0, PixelOrder::NativeArgb32);
  }
  return shown_.compose(view, picture_.bits(), static_cast<std::size_t>(picture_.sizeInBytes()),
                        PixelOrder::NativeArgb32);
}

void GraphicView::paintEvent(QPaintEvent*) {
  if (!WindowView(window_).ready()) return;
  if (pictureIsCurrent() || composePicture()) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(QRectF(rect()), picture_);
  }
}

void GraphicView::keyPressEvent(QKeyEvent* event) {
  const KeyPress press = translateKey(*event);
  if (press.ModifierKey) {
    viewFlagsChanged(press.Flags);
  } else {
    heldKeys_.insert(press.KeyCode);
    viewKeyDown(window_, press.KeyCode, press.Characters, press.Flags);
  }
}

// A key held down repeats as pairs of releases and presses marked as repeats; it is released
// only when it really goes up.
void GraphicView::keyReleaseEvent(QKeyEvent* event) {
  const KeyPress press = translateKey(*event);
  if (press.ModifierKey) {
    viewFlagsChanged(press.Flags);
  } else if (!event->isAutoRepeat()) {
    viewKeyUp();
    viewKeyReleased(press.KeyCode);
    heldKeys_.remove(press.KeyCode);
  }
}

void GraphicView::focusOutEvent(QFocusEvent* event) {
  for (const Int key : std::as_const(heldKeys_)) viewKeyReleased(key);
  heldKeys_.clear();
  QWidget::focusOutEvent(event);
}

void GraphicView::mousePressEvent(QMouseEvent* event) {
  owner_.reportMouseDown(*event, true);
}

void GraphicView::mouseReleaseEvent(QMouseEvent* event) {
  if (isReportedButton(event->button())) viewMouseUp();
}

GraphicWindow::GraphicWindow(UInt8 window) : window_(window), view_(window, *this) {
  setObjectName(QStringLiteral("GraphicWindow%1").arg(window));
  setAutoFillBackground(true);
  setFocusProxy(&view_);
  resize(640, 480);
  placeView();
}

PictureGeometry GraphicWindow::recordGeometry() const {
  const WindowView view(window_);
  if (!view.ready()) return {};
  return {view.width(), view.height(), view.borderWidth(), view.borderHeight()};
}

void GraphicWindow::setMenuBar(QMenuBar* menuBar) {
  menuBar_ = menuBar;
  placeView();
}

int GraphicWindow::menuBarHeight() const {
  return menuBar_ != nullptr && !menuBar_->isHidden() ? menuBar_->sizeHint().height() : 0;
}

void GraphicWindow::resizeContent(int width, int height) {
  if (isFullScreen()) {
    contentSizeAfterFullScreen_ = QSize(width, height);
    return;
  }
  resize(width, height + menuBarHeight());
}

void GraphicWindow::setTitle(const QString& title) {
  title_ = title;
  setWindowTitle(recording_ ? QStringLiteral("%1 ● Recording").arg(title_) : title_);
}

void GraphicWindow::setRecordingSign(bool recording) {
  recording_ = recording;
  setTitle(title_);
}

// A hidden menu bar's shortcuts do not work, so the window itself holds them meanwhile. Not
// every window system gives the window its old place back, so it is put there again.
void GraphicWindow::setFullScreen(bool fullScreen, const QList<QAction*>& shortcutItems) {
  if (fullScreen == isFullScreen()) return;
  if (fullScreen) {
    for (QAction* item : shortcutItems) {
      if (actions().contains(item)) continue;
      addAction(item);
      fullScreenShortcuts_.append(item);
    }
    geometryBeforeFullScreen_ = geometry();
    if (menuBar_ != nullptr) menuBar_->hide();
    showFullScreen();
  } else {
    for (QAction* item : fullScreenShortcuts_) removeAction(item);
    fullScreenShortcuts_.clear();
    if (menuBar_ != nullptr) menuBar_->show();
    showNormal();
    setGeometry(geometryBeforeFullScreen_);
    if (contentSizeAfterFullScreen_.isValid()) {
      resizeContent(contentSizeAfterFullScreen_.width(), contentSizeAfterFullScreen_.height());
      contentSizeAfterFullScreen_ = QSize();
    }
  }
  placeView();
}

void GraphicWindow::placeView() {
  const int top = menuBarHeight();
  if (menuBar_ != nullptr) menuBar_->setGeometry(0, 0, width(), top);
  layout_ = layoutPicture(size() - QSize(0, top), devicePixelRatioF(), recordGeometry());
  const QRect viewGeometry = layout_.View.translated(0, top);
  if (view_.geometry() != viewGeometry) view_.setGeometry(viewGeometry);
}

void GraphicWindow::reportMouseDown(const QMouseEvent& event, bool inView) {
  if (!isReportedButton(event.button())) return;
  const QPointF contentOrigin(0, menuBarHeight());
  const QPointF windowPoint =
      (inView ? event.position() + QPointF(view_.pos()) : event.position()) - contentOrigin;
  const QPointF position = layout_.windowCoordinates(windowPoint);
  const t_MouseClick click{buttonsOf(event.buttons() | event.button()),
                           modifierFlagsOf(event.modifiers())};
  viewMouseDown(window_, click, position.x(), position.y(), event.button() == Qt::RightButton);
}

void GraphicWindow::resizeEvent(QResizeEvent*) {
  placeView();
}

void GraphicWindow::mousePressEvent(QMouseEvent* event) {
  reportMouseDown(*event, false);
}

void GraphicWindow::mouseReleaseEvent(QMouseEvent* event) {
  if (isReportedButton(event->button())) viewMouseUp();
}

}  // namespace rvtools::shell
