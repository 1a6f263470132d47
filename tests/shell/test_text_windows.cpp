// SPDX-License-Identifier: MIT
// Text, pictures and files on the offscreen platform: Copy Text, Paste, the console, the
// pasteboard window, and the File items writing pictures, texts, PDF files and recordings.
#include <unistd.h>

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <future>
#include <thread>

#include "rvtools/picture.hpp"
#include "shell/dialogs.hpp"
#include "shell/text_windows.hpp"
#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

class TextWindowTest : public ShellTest {};

QClipboard& clipboard() {
  return *QGuiApplication::clipboard();
}

// Clipboard contents in another program's bytes.
QMimeData* plainTextBytes(const QByteArray& bytes) {
  auto* data = new QMimeData;
  data->setData("text/plain", bytes);
  return data;
}

// Waits for `work` on another thread while the GUI thread answers its calls.
template <typename Result>
Result whileServing(std::future<Result> work) {
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return work.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 5000));
  return work.get();
}

TEST_F(TextWindowTest, CopyTextGivesTheCharactersTheFontShows) {
  initTextWindow(0, 12, 4);
  t_Print(0, "Hi there   \r");
  t_TextLine(0);
  t_Plot(0, 0, 4);
  t_PlotHalfSize(0, 4, 4, true);
  t_PlotHalfSize(0, 5, 5, true);
  t_Vtab(0, 4);
  t_Print(0, "Größe é");
  bringToFront(0);
  choose("Edit", "Copy Text");
  EXPECT_EQ(clipboard().text(),
            "Hi there\n"
            "────────────\n"
            "▀ ▚\n"
            "Größe é\n");
}

TEST_F(TextWindowTest, PasteTypesThePasteboardIntoAWaitingInputForm) {
  initTextWindow(0, 20, 4);
  t_SetPasteHandler(t_PasteAsKeys);
  bringToFront(0);
  QWidget& view = graphicWindow(0).view();
  auto pasted = [&](QMimeData* data) {
    clipboard().setMimeData(data);
    std::future<std::string> line =
        std::async(std::launch::async, [] { return t_InputForm(0, "? ", "", false, 0, 20); });
    QTest::keyClick(&view, Qt::Key_V, Qt::MetaModifier);
    return whileServing(std::move(line));
  };
  QMimeData* text = new QMimeData;
  text->setText("77\n");
  EXPECT_EQ(pasted(text), "77");
  EXPECT_EQ(MenuEventQueue.last()->ItemAction, MenuTag::Paste);
  // NUL bytes and bytes that are no UTF-8 are nothing a keyboard types.
  EXPECT_EQ(pasted(plainTextBytes(QByteArray("4\0\xff"
                                             "2\r\n",
                                             6))),
            "42");

  QImage picture(8, 8, QImage::Format_RGB32);
  picture.fill(Qt::red);
  clipboard().setImage(picture);
  choose("Edit", "Paste");
  EXPECT_EQ(EventQueue.count(), 0u);
  t_SetPasteHandler({});
}

TEST_F(TextWindowTest, ConsoleShowsTheLogAsWrittenBoundedAndFollowingTheEnd) {
  QPlainTextEdit& console = *shellDelegate().SystemConsoleTextView;
  t_ConsoleClear();
  t_Log("written before the console opened");
  choose("Window", "Show System Console");
  whileServing(std::async(std::launch::async, [] {
    t_Log("written by the program");
    t_ConsolePrint("printed by the program\n");
    return true;
  }));
  const QString shown = console.toPlainText();
  const qsizetype before = shown.indexOf("written before the console opened\n");
  const qsizetype written = shown.indexOf("written by the program\n");
  EXPECT_GE(before, 0);
  EXPECT_GT(written, before);
  EXPECT_GT(shown.indexOf("printed by the program\n"), written);

  t_ConsoleClear();
  for (int line = 0; line < shell::SystemConsoleFeed::KeptLines + 50; ++line) {
    t_Log("line " + std::to_string(line));
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return console.toPlainText().endsWith("line 10049\n"); }));
  EXPECT_TRUE(console.toPlainText().startsWith("line 50\n"));
  QScrollBar& scrollBar = *console.verticalScrollBar();
  EXPECT_EQ(scrollBar.value(), scrollBar.maximum());
  scrollBar.setValue(10);
  t_Log("one more line");
  ASSERT_TRUE(QTest::qWaitFor([&] { return console.toPlainText().endsWith("one more line\n"); }));
  EXPECT_EQ(scrollBar.value(), 10);
}

TEST_F(TextWindowTest, PasteboardWindowFollowsTheClipboardBothWays) {
  QPlainTextEdit& view = *shellDelegate().PasteboardTextView;
  clipboard().setText("77");
  choose("Window", "Show Pasteboard");
  EXPECT_EQ(view.toPlainText(), "77");
  clipboard().setText("from elsewhere");
  EXPECT_EQ(view.toPlainText(), "from elsewhere");

  view.moveCursor(QTextCursor::End);
  QTest::keyClicks(&view, " and here");
  EXPECT_EQ(clipboard().text(), "from elsewhere and here");

  QImage picture(32, 16, QImage::Format_RGB32);
  picture.fill(Qt::blue);
  clipboard().setImage(picture);
  EXPECT_EQ(view.toPlainText(), "");
  EXPECT_EQ(view.placeholderText(), "The pasteboard holds a picture of 32 × 16 pixels.");

  clipboard().setMimeData(plainTextBytes(QByteArray("a\0b\xff", 4)));
  EXPECT_EQ(view.toPlainText(), QString("a") + QChar(0) + "b" + QChar(0xFFFD));
  const QString megabyte = QString(63, 'x').append('\n').repeated(1 << 14);
  clipboard().setText(megabyte);
  EXPECT_EQ(view.toPlainText(), megabyte);
}

class FileTest : public ShellTest {
 protected:
  // Answers file dialogs with `folder`/`name` (noting the name proposed), print dialogs with a
  // PDF file of that path, and keeps the text of warnings.
  void answerWith(const QString& folder, const QString& name) {
    shell::setDialogRunner([this, path = QDir(folder).filePath(name)](QDialog& dialog) {
      if (auto* files = dynamic_cast<QFileDialog*>(&dialog)) {
        proposed_ = QFileInfo(files->selectedFiles().value(0)).fileName();
        files->selectFile(path);
      } else if (auto* printing = dynamic_cast<QPrintDialog*>(&dialog)) {
        printing->printer()->setOutputFormat(QPrinter::PdfFormat);
        printing->printer()->setOutputFileName(path);
      } else if (auto* message = dynamic_cast<QMessageBox*>(&dialog)) {
        warnings_.append(message->text());
      }
      return int{QDialog::Accepted};
    });
  }

  QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QString proposed_;
  QStringList warnings_;
};

// A folder in which no file can be created: without write permission, or, for the superuser
// whom permissions do not stop, the kernel's /sys.
QString unwritableFolder(const QTemporaryDir& base) {
  if (geteuid() == 0) return QStringLiteral("/sys");
  const QString folder = QDir(base.path()).filePath("locked");
  QDir().mkpath(folder);
  QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
  return folder;
}

TEST_F(FileTest, SavePictureAndSaveTextWriteWhatTheWindowInFrontShows) {
  initTextWindow(0, 12, 3);
  t_Print(0, "Größe é\r");
  t_TextLine(0);
  t_WindowTitle(0, "Tub/1");
  bringToFront(0);
  const QTemporaryDir folder;

  answerWith(folder.path(), "tub.png");
  choose("File", "Save Picture…");
  EXPECT_EQ(proposed_, "Tub-1.png");
  const QImage saved(QDir(folder.path()).filePath("tub.png"));
  const std::optional<t_Image> picture = t_WindowImage(0);
  ASSERT_TRUE(picture.has_value());
  ASSERT_EQ(saved.size(), QSize(int(picture->Width), int(picture->Height)));
  for (int y = 0; y < saved.height(); ++y) {
    for (int x = 0; x < saved.width(); ++x) {
      const UInt8* argb = &picture->Pixels[4 * (y * saved.width() + x)];
      ASSERT_EQ(saved.pixel(x, y), qRgb(argb[1], argb[2], argb[3])) << x << ", " << y;
    }
  }

  answerWith(folder.path(), "tub.txt");
  choose("File", "Save Text…");
  EXPECT_EQ(proposed_, "Tub-1.txt");
  EXPECT_EQ(contentsOf(QDir(folder.path()).filePath("tub.txt")), "Größe é\n────────────\n\n");

  t_ConsolePrint("ready\n");
  bringToFront(SystemConsoleWindowNumber);
  answerWith(folder.path(), "console.txt");
  choose("File", "Save Text…");
  EXPECT_EQ(proposed_, "System Console.txt");
  EXPECT_EQ(QString::fromUtf8(contentsOf(QDir(folder.path()).filePath("console.txt"))),
            shellDelegate().SystemConsoleTextView->toPlainText());
  EXPECT_TRUE(warnings_.isEmpty());
}

TEST_F(FileTest, AFolderThatCannotBeWrittenGetsAClearMessageAndNothingLeftBehind) {
  initTextWindow(0, 12, 3);
  bringToFront(0);
  const QTemporaryDir base;
  const QString folder = unwritableFolder(base);
  const QStringList before = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden);

  answerWith(folder, "tub.txt");
  choose("File", "Save Text…");
  ASSERT_EQ(warnings_.size(), 1);
  EXPECT_TRUE(warnings_[0].startsWith("Could not write „" + folder + "/tub.txt“: "))
      << warnings_[0].toStdString();
  EXPECT_EQ(logLines().back(), "Save Text: " + warnings_[0].toStdString());

  answerWith(folder, "tub.png");
  choose("File", "Save Picture…");
  ASSERT_EQ(warnings_.size(), 2);
  EXPECT_TRUE(warnings_[1].startsWith("Could not save the picture as „" + folder + "/tub.png“: "));
  answerWith(folder, "tub.gif");
  choose("File", "Start Recording…");
  ASSERT_EQ(warnings_.size(), 3);
  EXPECT_TRUE(warnings_[2].startsWith("Could not record into „" + folder + "/tub.gif“: "));
  EXPECT_FALSE(t_IsRecording(0));
  EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden), before);
}

TEST_F(FileTest, RecordingsFromTheMenuOrTheProgramShowASignInTheTitle) {
  initTextWindow(0, 12, 3);
  t_WindowTitle(0, "Tub");
  bringToFront(0);
  const QWidget& window = graphicWindow(0);
  auto enabled = [](const QString& title) {
    emit shellDelegate().menuTitled("File")->aboutToShow();
    return menuItem("File", title)->isEnabled();
  };
  EXPECT_FALSE(enabled("Stop Recording"));
  const QTemporaryDir folder;
  const QString path = QDir(folder.path()).filePath("tub.gif");
  answerWith(folder.path(), "tub.gif");
  choose("File", "Start Recording…");
  EXPECT_EQ(proposed_, "Tub.gif");
  EXPECT_TRUE(t_IsRecording(0));
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == "Tub ● Recording"; }));
  EXPECT_FALSE(enabled("Start Recording…"));
  t_Print(0, "Hi");
  choose("File", "Stop Recording");
  EXPECT_TRUE(contentsOf(path).startsWith("GIF89a"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == "Tub"; }));
  EXPECT_TRUE(enabled("Start Recording…"));

  std::thread program(
      [&] { t_RecordStart(0, QDir(folder.path()).filePath("own.gif").toStdString()); });
  program.join();
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == "Tub ● Recording"; }));
  EXPECT_TRUE(enabled("Stop Recording"));
  EXPECT_TRUE(t_RecordStop(0));
  EXPECT_TRUE(warnings_.isEmpty());
}

TEST_F(FileTest, PrintPutsThePrintersPaperIntoAPdfFileWithoutAnyPrinter) {
  t_PrinterClear();
  t_PrinterPrint("10 PRINT \"HALLO\"\n20 GOTO 10\n");
  bringToFront(VirtualPrinterWindowNumber);
  const QTemporaryDir folder;
  answerWith(folder.path(), "paper.pdf");
  choose("File", "Print…");
  EXPECT_TRUE(contentsOf(QDir(folder.path()).filePath("paper.pdf")).startsWith("%PDF-"));

  answerWith(unwritableFolder(folder), "paper.pdf");
  choose("File", "Print…");
  ASSERT_EQ(warnings_.size(), 1);
  EXPECT_EQ(warnings_[0], "Could not print to „" + unwritableFolder(folder) + "/paper.pdf“.");
}

}  // namespace
}  // namespace rvtools::testing
