// SPDX-License-Identifier: MIT
// Internal: what the text views of the auxiliary windows show.
//
// The system console is the runtime's log: every write to the log reaches it through the log's
// mirror, from whatever thread logs, without waiting for the GUI thread; the text is handed over
// by a queued call. It keeps the last 10,000 lines. The pasteboard window is the general
// pasteboard (the system clipboard): it shows the plain text there, or says that a picture is
// there and its size, and what the user types there becomes the pasteboard's text. Text added to
// the console or the printer's paper stays in view while the view shows the end.
#pragma once

#include <QObject>
#include <QString>
#include <mutex>
#include <string>
#include <string_view>

class QPlainTextEdit;

namespace rvtools::shell {

// Appends `text` at the end of `view`, keeping the end in view if it was shown.
void appendFollowingEnd(QPlainTextEdit& view, const QString& text);

class SystemConsoleFeed final : public QObject {
 public:
  static constexpr int KeptLines = 10000;

  // Feeds `view`; install `takeLogText` as the log's mirror.
  explicit SystemConsoleFeed(QPlainTextEdit& view);

  // Any thread, under the log's lock: keeps the text for the GUI thread and asks it to show it.
  // Neither logs nor waits for the GUI thread.
  void takeLogText(std::string_view text);
  // GUI thread: shows the log written so far. Whatever reads, adds to or clears the console
  // calls it first, so that t_ConsolePrint's text follows the log written before it.
  void showPendingLog();

 protected:
  // The request of takeLogText, on the GUI thread.
  void customEvent(QEvent* event) override;

 private:
  QPlainTextEdit& view_;
  std::mutex pendingMutex_;
  std::string pending_;
  bool showRequested_ = false;
};

class PasteboardMirror final : public QObject {
 public:
  // Shows the pasteboard in `view` while the view's window is shown.
  explicit PasteboardMirror(QPlainTextEdit& view);

  // Shows the pasteboard's current contents, if the window is shown.
  void showPasteboard();
  // Empties the view without touching the pasteboard, then shows the pasteboard.
  void reset();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Shows `text` without taking it for the user's edit.
  void showText(const QString& text);
  void takeEdit();

  QPlainTextEdit& view_;
  bool showing_ = false;
};

}  // namespace rvtools::shell
