// SPDX-License-Identifier: MIT
// The desktop host's own menu items: saving the front window's picture or text, printing the
// virtual printer's paper, full screen; and the enabled state of every item of the menus.
#include "shell/desktop_actions.hpp"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QFontDatabase>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QTemporaryFile>
#include <QTextDocument>
#include <optional>

#include "rvtools/host.hpp"
#include "rvtools/picture.hpp"
#include "shell/app_delegate.hpp"
#include "shell/dialogs.hpp"
#include "shell/text_windows.hpp"

namespace rvtools::shell {
namespace {

constexpr int PaperFontSize = 10;

bool graphicWindowReady(UInt8 window) {
  return WindowView(window).ready();
}

// Why nothing could be written at `path`, as creating a file beside it tells.
QString writeProblem(const QString& path) {
  QTemporaryFile probe(QFileInfo(path).absolutePath() + "/.rvtools-XXXXXX");
  if (!probe.open()) return probe.errorString();
  return QStringLiteral("the System Console says why");
}

// Writes `bytes` as the whole file at `path`, under a temporary name that is renamed once all is
// written; the reason when that fails, with nothing left behind.
std::optional<QString> writeFileSafely(const QString& path, const QByteArray& bytes) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  file.write(bytes);
  if (!file.commit()) return file.errorString();
  return std::nullopt;
}

void reportFailure(QWidget* window, const QString& title, const QString& text) {
  t_Log(title.toStdString() + ": " + text.toStdString());
  showWarning(window, title, text);
}

}  // namespace

DesktopActions::DesktopActions(AppDelegate& delegate, const Items& items)
    : delegate_(delegate), items_(items) {
  connect(items_.SavePicture, &QAction::triggered, this, &DesktopActions::savePicture);
  connect(items_.SaveText, &QAction::triggered, this, &DesktopActions::saveText);
  connect(items_.Print, &QAction::triggered, this, &DesktopActions::print);
  connect(items_.StartRecording, &QAction::triggered, this, &DesktopActions::startRecording);
  connect(items_.StopRecording, &QAction::triggered, this, &DesktopActions::stopRecording);
  connect(items_.FullScreen, &QAction::triggered, this, &DesktopActions::toggleFullScreen);
  // The observer may be called on the program's thread; the sign is set on the GUI thread.
  setRecordingObserver([this](UInt8 window, bool recording) {
    QMetaObject::invokeMethod(
        this,
        [this, window, recording] {
          delegate_.graphicWindow(window)->setRecordingSign(recording);
          updateMenuItems();
        },
        Qt::QueuedConnection);
  });
}

DesktopActions::~DesktopActions() {
  setRecordingObserver({});
}

UInt8 DesktopActions::frontWindow() const {
  return delegate_.windowNumber(QApplication::activeWindow());
}

QString DesktopActions::titleOf(UInt8 window) const {
  if (const GraphicWindow* graphic = delegate_.graphicWindow(window)) return graphic->title();
  return delegate_.window(window)->windowTitle();
}

// Asks in a save dialog titled `title` where a file of window `window` goes, proposing the
// window's title with `suffix` ("png") among the files of that kind; empty when cancelled.
QString DesktopActions::askWhereToSave(UInt8 window, const QString& title, const QString& kind,
                                       const QString& suffix) const {
  return askForFile(delegate_.window(window),
                    {true,
                     title,
                     {},
                     QString::fromStdString(fileNameFromTitle(titleOf(window).toStdString(), window,
                                                              '.' + suffix.toStdString())),
                     kind + " (*." + suffix + ')',
                     suffix});
}

bool DesktopActions::canSaveText(UInt8 window) const {
  if (window == VirtualPrinterWindowNumber || window == SystemConsoleWindowNumber) return true;
  return WindowView(window).hasText();
}

void DesktopActions::updateMenuItems() {
  for (QMenu* menu : delegate_.menus()) {
    for (QAction* item : menu->actions()) {
      const QVariant tag = item->property("tag");
      if (item->isSeparator() || !tag.isValid() || item == delegate_.quitItem()) continue;
      item->setEnabled(menuChoiceCanAct(tag.toLongLong()));
    }
  }
  const UInt8 front = frontWindow();
  const bool graphic = graphicWindowReady(front);
  const bool shown = graphic && WindowView(front).visible();
  items_.SavePicture->setEnabled(shown);
  items_.SaveText->setEnabled(canSaveText(front));
  items_.Print->setEnabled(front == VirtualPrinterWindowNumber);
  const bool recording = graphic && t_IsRecording(front);
  items_.StartRecording->setEnabled(shown && !recording);
  items_.StopRecording->setEnabled(recording);
  items_.FullScreen->setEnabled(graphic);
  items_.FullScreen->setChecked(graphic && delegate_.window(front)->isFullScreen());
}

void DesktopActions::savePicture() {
  const UInt8 front = frontWindow();
  if (!graphicWindowReady(front)) return t_Beep();
  QWidget* window = delegate_.window(front);
  const QString path = askWhereToSave(front, QStringLiteral("Save Picture"),
                                      QStringLiteral("PNG pictures"), QStringLiteral("png"));
  if (path.isEmpty() || t_SavePicture(front, path.toStdString())) return;
  showWarning(
      window, QStringLiteral("Save Picture"),
      QStringLiteral("Could not save the picture as „%1“: %2.").arg(path, writeProblem(path)));
}

void DesktopActions::saveText() {
  const UInt8 front = frontWindow();
  if (!canSaveText(front)) return t_Beep();
  QWidget* window = delegate_.window(front);
  const QString path = askWhereToSave(front, QStringLiteral("Save Text"),
                                      QStringLiteral("Text files"), QStringLiteral("txt"));
  if (path.isEmpty()) return;
  QByteArray text;
  if (front < 8) {
    text = QByteArray::fromStdString(unicodeScreenText(front));
  } else {
    if (front == SystemConsoleWindowNumber) delegate_.systemConsole().showPendingLog();
    text = delegate_.textView(front)->toPlainText().toUtf8();
  }
  if (const std::optional<QString> failure = writeFileSafely(path, text)) {
    reportFailure(window, QStringLiteral("Save Text"),
                  QStringLiteral("Could not write „%1“: %2.").arg(path, *failure));
  }
}

void DesktopActions::print() {
  const UInt8 front = frontWindow();
  if (front != VirtualPrinterWindowNumber) return t_Beep();
  QWidget* window = delegate_.window(front);
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(titleOf(front));
  QPrintDialog dialog(&printer, window);
  if (runDialog(dialog) != QDialog::Accepted) return;
  QTextDocument paper;
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSize(PaperFontSize);
  paper.setDefaultFont(font);
  paper.setPlainText(delegate_.textView(front)->toPlainText());
  paper.print(&printer);
  if (printer.printerState() == QPrinter::Error) {
    const QString target =
        printer.outputFileName().isEmpty() ? printer.printerName() : printer.outputFileName();
    reportFailure(window, QStringLiteral("Print"),
                  QStringLiteral("Could not print to „%1“.").arg(target));
  }
}

void DesktopActions::startRecording() {
  const UInt8 front = frontWindow();
  if (!graphicWindowReady(front) || t_IsRecording(front)) return t_Beep();
  const QString path = askWhereToSave(front, QStringLiteral("Start Recording"),
                                      QStringLiteral("GIF animations"), QStringLiteral("gif"));
  if (path.isEmpty() || t_RecordStart(front, path.toStdString())) return;
  showWarning(delegate_.window(front), QStringLiteral("Start Recording"),
              QStringLiteral("Could not record into „%1“: %2.").arg(path, writeProblem(path)));
}

void DesktopActions::stopRecording() {
  const UInt8 front = frontWindow();
  if (front >= 8 || !t_IsRecording(front)) return t_Beep();
  if (t_RecordStop(front)) return;
  showWarning(delegate_.window(front), QStringLiteral("Stop Recording"),
              QStringLiteral("Could not finish the recording: the System Console says why."));
}

void DesktopActions::toggleFullScreen() {
  const UInt8 front = frontWindow();
  if (!graphicWindowReady(front)) return;
  QList<QAction*> shortcutItems;
  for (QMenu* menu : delegate_.menus()) {
    for (QAction* item : menu->actions()) {
      if (!item->shortcut().isEmpty()) shortcutItems.append(item);
    }
  }
  GraphicWindow& window = *delegate_.graphicWindow(front);
  window.setFullScreen(!window.isFullScreen(), shortcutItems);
  updateMenuItems();
}

}  // namespace rvtools::shell
