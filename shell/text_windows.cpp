// SPDX-License-Identifier: MIT
// The system console fed by the log's mirror and bounded to its last lines, the pasteboard
// window kept in step with the clipboard both ways, and appending text that follows the end.
#include "shell/text_windows.hpp"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <memory>

namespace rvtools::shell {
namespace {

// Log text the GUI thread has not shown yet is bounded too: beyond this many bytes the oldest
// half goes, which is more than the console keeps anyway.
constexpr std::size_t PendingLimit = std::size_t{4} << 20;

void dropOldestHalf(std::string& text) {
  const std::size_t lineEnd = text.find('\n', text.size() / 2);
  text.erase(0, lineEnd == std::string::npos ? text.size() / 2 : lineEnd + 1);
}

QString pictureNote(const QMimeData& data) {
  const QImage picture = qvariant_cast<QImage>(data.imageData());
  return QStringLiteral("The pasteboard holds a picture of %1 × %2 pixels.")
      .arg(picture.width())
      .arg(picture.height());
}

}  // namespace

void appendFollowingEnd(QPlainTextEdit& view, const QString& text) {
  QScrollBar& scrollBar = *view.verticalScrollBar();
  const bool showingEnd = scrollBar.value() == scrollBar.maximum();
  QTextCursor end(view.document());
  end.movePosition(QTextCursor::End);
  end.insertText(text);
  if (showingEnd) scrollBar.setValue(scrollBar.maximum());
}

// A text ending in a line feed leaves an empty last block, so one block more than lines.
SystemConsoleFeed::SystemConsoleFeed(QPlainTextEdit& view) : view_(view) {
  view_.setMaximumBlockCount(KeptLines + 1);
}

void SystemConsoleFeed::takeLogText(std::string_view text) {
  std::lock_guard lock(pendingMutex_);
  pending_ += text;
  if (pending_.size() > PendingLimit) dropOldestHalf(pending_);
  if (showRequested_) return;
  showRequested_ = true;
  // A plain event, which Qt's own code deletes once delivered: the handover stays inside Qt,
  // where a thread checker does not look, and the text itself passes under pendingMutex_.
  QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
}

void SystemConsoleFeed::customEvent(QEvent*) {
  showPendingLog();
}

void SystemConsoleFeed::showPendingLog() {
  std::string text;
  {
    std::lock_guard lock(pendingMutex_);
    text.swap(pending_);
    showRequested_ = false;
  }
  if (!text.empty()) appendFollowingEnd(view_, QString::fromStdString(text));
}

PasteboardMirror::PasteboardMirror(QPlainTextEdit& view) : view_(view) {
  connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this,
          &PasteboardMirror::showPasteboard);
  connect(&view_, &QPlainTextEdit::textChanged, this, &PasteboardMirror::takeEdit);
  view_.window()->installEventFilter(this);
}

// Reading the clipboard may wait for the program that owns it, so it is read only while the
// window is shown. A text equal to the view's is left alone, so that the cursor stays where
// the user is typing.
void PasteboardMirror::showPasteboard() {
  if (!view_.isVisible()) return;
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  const QString text = data != nullptr ? data->text() : QString();
  if (text.isEmpty() && data != nullptr && data->hasImage()) {
    view_.setPlaceholderText(pictureNote(*data));
  } else {
    view_.setPlaceholderText(QStringLiteral("The pasteboard is empty."));
  }
  if (text != view_.toPlainText()) showText(text);
}

void PasteboardMirror::reset() {
  showText({});
  showPasteboard();
}

void PasteboardMirror::showText(const QString& text) {
  showing_ = true;
  view_.setPlainText(text);
  showing_ = false;
}

void PasteboardMirror::takeEdit() {
  if (showing_) return;
  QGuiApplication::clipboard()->setText(view_.toPlainText());
}

bool PasteboardMirror::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Show) showPasteboard();
  return false;
}

}  // namespace rvtools::shell
