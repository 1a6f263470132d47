// SPDX-License-Identifier: MIT
// Internal: a graphic window and its view. The window is a top-level widget whose background,
// painted in the border colour, frames the view; the view shows the window's picture scaled
// crisply and turns keys and clicks into the runtime's input events. A menu bar may sit above the
// content; the content (border and picture) is the rest of the window.
#pragma once

#include <QImage>
#include <QList>
#include <QSet>
#include <QWidget>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "rvtools/types.hpp"
#include "rvtools/window_view.hpp"
#include "shell/picture_layout.hpp"

class QAction;
class QMenuBar;

namespace rvtools::shell {

class GraphicWindow;

// The view of graphic window n, carrying the object name Viewnn.
class GraphicView final : public QWidget {
 public:
  GraphicView(UInt8 window, GraphicWindow& owner);

  UInt8 windowNumber() const { return window_; }
  // Whether the kept picture still shows what the window holds (ShownPicture). Any thread may
  // ask.
  bool pictureIsCurrent() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  // The keys held while the view loses the keyboard go up, since their releases go elsewhere.
  void focusOutEvent(QFocusEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  // Tab and shift-tab are keys for the program, not a move of the focus.
  bool focusNextPrevChild(bool) override { return false; }

 private:
  bool composePicture();

  UInt8 window_;
  GraphicWindow& owner_;
  QSet<Int> heldKeys_;  // pressed here and not yet released
  QImage picture_;      // kept across frames; reallocated only when the window's size changes
  // What the kept picture shows; the refresh thread reads it to leave an unchanged view alone.
  ShownPicture shown_;
};

class GraphicWindow final : public QWidget {
 public:
  explicit GraphicWindow(UInt8 window);

  GraphicView& view() { return view_; }
  // Puts `menuBar` (a child of this window) above the content.
  void setMenuBar(QMenuBar* menuBar);
  // The height of the menu bar above the content; 0 while it is hidden.
  int menuBarHeight() const;
  // Resizes the window so that its content is width x height; a window on the whole screen
  // takes the size when it is back in its window.
  void resizeContent(int width, int height);
  // Shows the window on the whole screen without its menu bar, the items with a shortcut of
  // its menus still at hand, or back in its window with the bar.
  void setFullScreen(bool fullScreen, const QList<QAction*>& shortcutItems);
  // The title the program gave the window, shown with a sign while the window is recorded.
  void setTitle(const QString& title);
  QString title() const { return title_; }
  void setRecordingSign(bool recording);
  // Places the view for the window's current size and its record's size and border.
  void placeView();
  // A button press in the view or, outside it, in the border.
  void reportMouseDown(const QMouseEvent& event, bool inView);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  PictureGeometry recordGeometry() const;

  UInt8 window_;
  GraphicView view_;
  PictureLayout layout_;  // within the content, below the menu bar
  QMenuBar* menuBar_ = nullptr;
  QList<QAction*> fullScreenShortcuts_;  // held by the window while its menu bar is hidden
  QRect geometryBeforeFullScreen_;
  QString title_;
  bool recording_ = false;
  QSize contentSizeAfterFullScreen_;  // asked for while on the whole screen
};

}  // namespace rvtools::shell
