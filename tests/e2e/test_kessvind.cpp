// SPDX-License-Identifier: MIT
// Desktop programs on a real X server of each test's own: keys typed at a small program, and the
// drop demo Kessvind from its prompt to the full tub, its menus' shortcuts and its quit.
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtEndian>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace rvtools::e2e {
namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// A child that outlives a crashed or timed-out test binary would keep its display or its window;
// the kernel kills it with its parent instead.
void dieWithParent(QProcess& process) {
  process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

QProcessEnvironment displayEnvironment(const QString& display) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("WAYLAND_DISPLAY");
  environment.insert("DISPLAY", display);
  environment.insert("QT_QPA_PLATFORM", "xcb");
  return environment;
}

void stop(QProcess& process) {
  if (process.state() == QProcess::NotRunning) return;
  process.kill();
  process.waitForFinished(5000);
}

// A file that takes a long-running child's standard error, so that a failing test can show it;
// a pipe that nobody reads while the test waits could fill up and stop the child.
class ErrorFile {
 public:
  explicit ErrorFile(QProcess& process) {
    if (file_.open()) process.setStandardErrorFile(file_.fileName());
  }
  std::string text() const {
    QFile file(file_.fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
  }

 private:
  QTemporaryFile file_;
};

// A desktop program running on the test's X server, its standard output collected; killed when
// the test ends, and its standard error shown when the test has failed.
class DesktopProgram {
 public:
  DesktopProgram(const QString& path, const QString& display) : path_(path.toStdString()) {
    dieWithParent(process_);
    process_.setProcessEnvironment(displayEnvironment(display));
    process_.start(path, {});
    EXPECT_TRUE(process_.waitForStarted(10000)) << path_ << errors_.text();
  }
  ~DesktopProgram() {
    stop(process_);
    const std::string errors = errors_.text();
    if (::testing::Test::HasFailure() && !errors.empty()) {
      ADD_FAILURE() << path_ << " wrote to standard error:\n" << errors;
    }
  }

  // Waits until the log holds `line` as a whole line.
  bool waitForLogLine(const QString& line, Milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
      if (('\n' + log()).contains('\n' + line + '\n')) return true;
      if (Clock::now() >= deadline) return false;
      if (!process_.waitForReadyRead(100)) std::this_thread::sleep_for(100ms);
    }
  }
  QString log() { return log_ += QString::fromUtf8(process_.readAllStandardOutput()); }
  bool isRunning() const { return process_.state() == QProcess::Running; }
  // Waits for the program to end; its exit code, or -1 when it did not end normally in time.
  int waitForExit(Milliseconds timeout) {
    const bool ended = process_.waitForFinished(static_cast<int>(timeout.count()));
    log();
    return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

 private:
  std::string path_;
  QProcess process_;
  ErrorFile errors_{process_};
  QString log_;
};

// An xwd dump of 24-bit true colour at 32 bits a pixel as a picture; null for anything else. The
// dump is a header of big-endian 32-bit fields, the window's name, the colour map, then the
// pixels, line after line.
QImage imageOfXwd(const QByteArray& dump) {
  enum Field { HeaderSize, Version, Format, Depth, Width, Height, ByteOrder = 7 };
  enum : int { BitsPerPixel = 11, BytesPerLine, RedMask = 14, GreenMask, BlueMask };
  enum : int { ColourCount = 19, FieldCount = 25 };
  constexpr quint32 ZPixmap = 2, LeastSignificantFirst = 0;
  if (dump.size() < 4 * FieldCount) return {};
  auto field = [&](int n) { return qFromBigEndian<quint32>(dump.constData() + 4 * n); };
  const bool trueColour = field(Version) == 7 && field(Format) == ZPixmap && field(Depth) == 24 &&
                          field(BitsPerPixel) == 32 && field(RedMask) == 0xFF0000 &&
                          field(GreenMask) == 0xFF00 && field(BlueMask) == 0xFF;
  const qint64 width = field(Width), height = field(Height), stride = field(BytesPerLine);
  const qint64 start = qint64{field(HeaderSize)} + 12 * qint64{field(ColourCount)};
  if (!trueColour || stride < 4 * width || start + stride * height > dump.size()) return {};
  QImage picture(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
  const bool leastFirst = field(ByteOrder) == LeastSignificantFirst;
  for (int y = 0; y < picture.height(); ++y) {
    const char* line = dump.constData() + start + stride * y;
    auto* out = reinterpret_cast<quint32*>(picture.scanLine(y));
    for (int x = 0; x < picture.width(); ++x) {
      const quint32 word = leastFirst ? qFromLittleEndian<quint32>(line + 4 * x)
                                      : qFromBigEndian<quint32>(line + 4 * x);
      out[x] = 0xFF000000u | (word & 0xFFFFFFu);
    }
  }
  return picture;
}

// Each test has an X server of its own (Xvfb on a display number the server picks itself), starts
// desktop programs on it, types with real X key events (xdotool), takes the X server's picture of
// a window (xwd) and reads and writes the X clipboard as another program (xclip).
class DesktopTest : public ::testing::Test {
 protected:
  // The server writes the display number to its standard output once it accepts connections.
  void SetUp() override {
    dieWithParent(server_);
    server_.start(RVTOOLS_XVFB,
                  {"-displayfd", "1", "-screen", "0", "1600x1000x24", "-nolisten", "tcp"});
    const auto deadline = Clock::now() + 20s;
    while (!server_.canReadLine() && Clock::now() < deadline) server_.waitForReadyRead(100);
    const QString number = QString::fromLatin1(server_.readLine()).trimmed();
    ASSERT_FALSE(number.isEmpty()) << "Xvfb did not start:\n" << serverErrors_.text();
    display_ = ':' + number;
  }
  void TearDown() override { stop(server_); }

  std::unique_ptr<DesktopProgram> start(const QString& path) {
    return std::make_unique<DesktopProgram>(path, display_);
  }
  // The visible window titled exactly `title`, waited for; empty when it does not appear.
  QString findWindow(const QString& title) {
    const QByteArray found = runClient(
        RVTOOLS_XDOTOOL, {"search", "--sync", "--onlyvisible", "--name", '^' + title + '$'});
    return QString::fromLatin1(found).section('\n', 0, 0).trimmed();
  }
  // Focuses `window` and sends the keys (xdotool key names) one after another, or types `text`.
  void pressKeys(const QString& window, const QStringList& keys) {
    runClient(RVTOOLS_XDOTOOL,
              QStringList{"windowfocus", "--sync", window, "key", "--delay", "40"} + keys);
  }
  void typeText(const QString& window, const QString& text) {
    runClient(RVTOOLS_XDOTOOL, {"windowfocus", "--sync", window, "type", "--delay", "40", text});
  }
  // xclip hands the text over to a copy of itself that serves the clipboard until another
  // program takes it or the X server ends.
  void putOnClipboard(const QByteArray& text) {
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(text);
    file.close();
    runClient(RVTOOLS_XCLIP, {"-selection", "clipboard", "-in", file.fileName()});
  }
  QByteArray clipboardText() {
    return runClient(RVTOOLS_XCLIP, {"-selection", "clipboard", "-out"});
  }
  // The X server's picture of `window`; a null image when it could not be taken.
  QImage screenshot(const QString& window) {
    return imageOfXwd(runClient(RVTOOLS_XWD, {"-silent", "-id", window}));
  }
  // Takes pictures of `window` until one satisfies `wanted`, or the time is up; the last one.
  QImage waitForPicture(const QString& window, const std::function<bool(const QImage&)>& wanted,
                        Milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
      QImage picture = screenshot(window);
      if (picture.isNull() || wanted(picture) || Clock::now() >= deadline) return picture;
      std::this_thread::sleep_for(100ms);
    }
  }
  // Saves `picture` as <name>.png into the folder named by RVTOOLS_SCREENSHOTS, when it is set;
  // this is how the pictures of the demo in docs/ are taken.
  static void keepPicture(const QImage& picture, const QString& name) {
    const QString folder = qEnvironmentVariable("RVTOOLS_SCREENSHOTS");
    if (folder.isEmpty()) return;
    EXPECT_TRUE(picture.save(QDir(folder).filePath(name + ".png"), "PNG"));
  }

 private:
  // Runs an X client on the test's display with a time limit; its standard output.
  QByteArray runClient(const QString& program, const QStringList& arguments) {
    QProcess client;
    dieWithParent(client);
    client.setProcessEnvironment(displayEnvironment(display_));
    client.start(program, arguments);
    const bool ended = client.waitForFinished(20000);
    if (ended && client.exitStatus() == QProcess::NormalExit && client.exitCode() == 0) {
      return client.readAllStandardOutput();
    }
    stop(client);
    ADD_FAILURE() << (program + ' ' + arguments.join(' ')).toStdString()
                  << (ended ? " failed: " : " did not finish in time")
                  << client.readAllStandardError().toStdString();
    return {};
  }

  QProcess server_;
  ErrorFile serverErrors_{server_};
  QString display_;
};

// Where things lie in the picture of a graphic window with a border of 16 pixels around
// characters of 16 x 32 pixels; columns and lines count from 0.
constexpr int Border = 16, CellWidth = 16, CellHeight = 32;
QRect cellArea(int column, int line) {
  return {Border + CellWidth * column, Border + CellHeight * line, CellWidth, CellHeight};
}

// The window's content of `columns` x `lines` characters with its border, cut from the bottom
// of the window's picture, leaving a menu bar above it out; null when the picture is smaller.
QImage contentOf(const QImage& window, int columns, int lines) {
  const QSize size(2 * Border + columns * CellWidth, 2 * Border + lines * CellHeight);
  if (window.width() < size.width() || window.height() < size.height()) return {};
  const QPoint corner((window.width() - size.width()) / 2, window.height() - size.height());
  return window.copy(QRect(corner, size));
}

// The number of pixels of exactly `colour` in the area; 0 for an area outside the picture.
int pixelsOfColour(const QImage& picture, const QRect& area, QColor colour) {
  if (!picture.rect().contains(area)) return 0;
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += picture.pixelColor(x, y) == colour;
  }
  return count;
}

// Whether any pixel of the area differs from `paper`; false for an area outside the picture.
bool hasInk(const QImage& picture, const QRect& area, QColor paper = Qt::black) {
  return picture.rect().contains(area) &&
         pixelsOfColour(picture, area, paper) < area.width() * area.height();
}

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

class EchoKeysTest : public DesktopTest {};

QStringList keyLines(const QString& log) {
  return log.split('\n').filter(QRegularExpression("^Key: "));
}

TEST_F(EchoKeysTest, TypedKeysArriveWithTheirValuesAndShowInTheWindow) {
  const auto program = start(RVTOOLS_ECHO_KEYS);
  const QString window = findWindow("EchoKeys");
  ASSERT_FALSE(window.isEmpty());
  ASSERT_TRUE(program->waitForLogLine("Echo: Ready.", 10s));

  typeText(window, "aZ");
  pressKeys(window, {"Return", "Left", "F1", "BackSpace"});
  ASSERT_TRUE(program->waitForLogLine("Key: 127", 10s)) << program->log().toStdString();
  EXPECT_EQ(keyLines(program->log()),
            QStringList({"Key: 97", "Key: 90", "Key: 13", "Key: 8", "Key: 129", "Key: 127"}));
  // "Keys: 97 90 13 8 129 127" fills the first 24 cells of the first line; the cursor waits in
  // the next one.
  auto content = [](const QImage& shot) { return contentOf(shot, 40, 10); };
  const QImage picture = content(waitForPicture(
      window, [&](const QImage& shot) { return hasInk(content(shot), cellArea(23, 0)); }, 5s));
  ASSERT_FALSE(picture.isNull());
  const QColor grey(84, 84, 84);
  EXPECT_EQ(picture.pixelColor(2, 2), grey);
  EXPECT_EQ(picture.pixelColor(picture.width() - 3, picture.height() - 3), grey);
  for (const int column : {0, 1, 6, 22, 23}) EXPECT_TRUE(hasInk(picture, cellArea(column, 0)));
  EXPECT_FALSE(hasInk(picture, cellArea(25, 0).united(cellArea(39, 0))));
  EXPECT_FALSE(hasInk(picture, cellArea(0, 1).united(cellArea(39, 9))));
}

}  // namespace
}  // namespace rvtools::e2e
