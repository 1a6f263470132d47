// The drop demo Kessvind as a user meets it on a real X server: the delay prompt (typed, or
// pasted from the clipboard), the sound question of slow runs, the bits falling, the full tub
// with the closing text, a window that stays open after the program has ended, its picture
// saved and its text copied through the File and Edit menus' shortcuts, and the quit shortcut.
#include <QDir>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <thread>

#include "desktop_session.hpp"

namespace rvtools::e2e {
namespace {

const QString QuitLine = "t_QuitProgram: Quitting current thread with message in window #0.";
const QColor Black(0, 0, 0), Red(255, 0, 0), TubGreen(0, 128, 0), Speck(255, 128, 128);

// The demo's window: 80 x 25 characters.
QImage content(const QImage& window) {
  return contentOf(window, 80, 25);
}

// A low-resolution point: 16 x 16 pixels, the grid moved down by ten rows.
QColor loResPoint(const QImage& picture, int x, int y) {
  return picture.pixelColor(Border + 16 * x + 8, Border + 16 * (y + 10) + 8);
}

// Pixels of the same place that differ in colour; -1 when the sizes differ.
int differingPixels(const QImage& one, const QImage& other) {
  if (one.size() != other.size()) return -1;
  int count = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) count += one.pixelColor(x, y) != other.pixelColor(x, y);
  }
  return count;
}

bool tubIsDrawn(const QImage& picture) {
  return loResPoint(picture, 0, 20) == TubGreen && loResPoint(picture, 79, 20) == TubGreen;
}

// Points inside the tub below the banner in a colour that only bits have.
int bitsInTheTub(const QImage& picture) {
  int bits = 0;
  for (int y = 6; y <= 37; ++y) {
    for (int x = 2; x <= 77; ++x) {
      const QColor colour = loResPoint(picture, x, y);
      bits += colour != Black && colour != TubGreen && colour != Speck;
    }
  }
  return bits;
}

// The line of the delay prompt starts as "5000".
const QStringList EraseTheDelay = {"BackSpace", "BackSpace", "BackSpace", "BackSpace"};

class KessvindTest : public DesktopTest {
 protected:
  // Starts the demo and types the answer to the delay prompt.
  std::unique_ptr<DesktopProgram> startWithDelay(const QString& delay) {
    auto program = start(RVTOOLS_KESSVIND);
    window_ = findWindow("Kessvind");
    if (window_.isEmpty()) return program;
    QStringList keys = EraseTheDelay;
    for (const QChar digit : delay) keys << QString(digit);
    pressKeys(window_, keys << "Return");
    return program;
  }

  // Saves the window's picture with File > Save Picture… (Meta+Shift+S) as `path`, typed into
  // the file dialog.
  void savePicture(const QString& path) {
    pressKeys(window_, {"super+shift+s"});
    const QString dialog = findWindow("Save Picture");
    ASSERT_FALSE(dialog.isEmpty());
    pressKeys(dialog, {"ctrl+a"});
    typeText(dialog, path);
    pressKeys(dialog, {"Return"});
  }

  void quitWithTheShortcut(DesktopProgram& program) {
    pressKeys(window_, {"super+q"});
    EXPECT_EQ(program.waitForExit(10s), 0);
    EXPECT_TRUE(program.log().endsWith("applicationWillTerminate: Called.\n"));
  }

  QString window_;
};

// The answer "0" and Return comes from another program through the clipboard: Edit > Paste
// (Meta+V) types it.
TEST_F(KessvindTest, PastedNoDelayFillsTheTubEndsTheProgramAndKeepsTheWindow) {
  const auto program = start(RVTOOLS_KESSVIND);
  window_ = findWindow("Kessvind");
  ASSERT_FALSE(window_.isEmpty());
  putOnClipboard("0\n");
  pressKeys(window_, EraseTheDelay + QStringList{"super+v"});
  ASSERT_TRUE(program->waitForLogLine("PlotDrops: Bit Zolbe voll.", 120s));
  ASSERT_TRUE(program->waitForLogLine(QuitLine, 10s));

  // "(Programm Ende)" in red at the start of the last line, over the tub's floor.
  const QRect closingText = cellArea(0, 24).united(cellArea(14, 24));
  const QImage shot = waitForPicture(
      window_, [&](const QImage& s) { return pixelsOfColour(content(s), closingText, Red) > 200; },
      5s);
  ASSERT_FALSE(shot.isNull());
  keepPicture(shot, "kessvind-full");
  const QImage picture = content(shot);
  EXPECT_GT(pixelsOfColour(picture, closingText, Red), 200);
  EXPECT_EQ(pixelsOfColour(picture, cellArea(15, 24).united(cellArea(79, 24)), Red), 0);
  EXPECT_TRUE(tubIsDrawn(picture));
  EXPECT_EQ(loResPoint(picture, 40, 39), TubGreen);
  EXPECT_GT(bitsInTheTub(picture), 1000);

  // The saved picture is the window's own, border and menu bar aside, pixel for pixel.
  const QTemporaryDir folder;
  const QString path = QDir(folder.path()).filePath("tub.png");
  savePicture(path);
  for (int wait = 0; wait < 100 && !QFileInfo::exists(path); ++wait)
    std::this_thread::sleep_for(100ms);
  ASSERT_TRUE(QFileInfo::exists(path));
  const QImage saved(path);
  EXPECT_EQ(differingPixels(saved, picture.copy(Border, Border, 80 * CellWidth, 25 * CellHeight)),
            0);

  // Edit > Copy Text (Meta+C) gives other programs the screen as the characters it shows.
  pressKeys(window_, {"super+c"});
  const QString text = QString::fromUtf8(clipboardText());
  EXPECT_TRUE(text.startsWith("Kessvind")) << text.toStdString();
  EXPECT_TRUE(text.contains(QString(80, QChar(0x2500)) + '\n'));
  EXPECT_TRUE(text.contains('\n' + QString(80, QChar(0x2580)) + '\n'));
  EXPECT_TRUE(text.endsWith("(Programm Ende)" + QString(65, QChar(0x2580)) + '\n'));
  EXPECT_FALSE(text.contains('\r'));

  std::this_thread::sleep_for(1s);
  EXPECT_TRUE(program->isRunning());
  quitWithTheShortcut(*program);
}

TEST_F(KessvindTest, DefaultDelayAsksForTheSoundBeforeTheBitsFall) {
  const auto program = startWithDelay("5000");
  ASSERT_FALSE(window_.isEmpty());

  // The question "Tropfen-Sound ausgeben [J/N] ? " on the fourth line, the cursor after it,
  // and no tub while the program waits for the answer.
  auto asking = [](const QImage& shot) {
    const QImage picture = content(shot);
    return hasInk(picture, cellArea(0, 3)) && hasInk(picture, cellArea(29, 3)) &&
           !hasInk(picture, cellArea(33, 3).united(cellArea(79, 3))) && !tubIsDrawn(picture);
  };
  ASSERT_TRUE(asking(waitForPicture(window_, asking, 10s)));
  std::this_thread::sleep_for(1s);
  EXPECT_TRUE(asking(screenshot(window_)));

  // After "n" the line says what is going on, the counter follows at column 52, bits fall.
  pressKeys(window_, {"n"});
  auto dropping = [](const QImage& shot) {
    const QImage picture = content(shot);
    return tubIsDrawn(picture) && hasInk(picture, cellArea(49, 3)) &&
           hasInk(picture, cellArea(51, 3));
  };
  EXPECT_TRUE(dropping(waitForPicture(window_, dropping, 10s)));
  EXPECT_FALSE(program->log().contains("PlotDrops"));
  quitWithTheShortcut(*program);
}

TEST_F(KessvindTest, ShortDelayShowsTheBitsPilingUp) {
  const auto program = startWithDelay("200");
  ASSERT_FALSE(window_.isEmpty());
  const QImage shot = waitForPicture(
      window_, [](const QImage& s) { return bitsInTheTub(content(s)) >= 60; }, 60s);
  EXPECT_GE(bitsInTheTub(content(shot)), 60);
  EXPECT_FALSE(program->log().contains("PlotDrops"));
  keepPicture(shot, "kessvind-running");
}

TEST(KessvindWithoutDisplayTest, SaysInOneSentenceThatItNeedsOne) {
  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    environment.remove(variable);
  }
  program.setProcessEnvironment(environment);
  program.start(RVTOOLS_KESSVIND, {});
  ASSERT_TRUE(program.waitForFinished(10000));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program.exitCode(), 1);
  EXPECT_EQ(program.readAllStandardError(),
            "Kessvind needs a graphical display: set DISPLAY or run it under Xvfb.\n");
  EXPECT_EQ(program.readAllStandardOutput(), "");
}

}  // namespace
}  // namespace rvtools::e2e
