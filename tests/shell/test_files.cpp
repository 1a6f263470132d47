// The host's own File items on the offscreen platform, their dialogs answered by the test:
// Save Picture… and Save Text… write what the window in front shows, Print… puts the virtual
// printer's paper into a PDF file without any printer, Start Recording… and Stop Recording make
// an animated GIF while the title carries a sign, and a folder that cannot be written gets a
// clear message with nothing left behind.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

#include "rvtools/picture.hpp"
#include "shell/dialogs.hpp"
#include "shell_test.hpp"

namespace rvtools::testing {
namespace {

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
