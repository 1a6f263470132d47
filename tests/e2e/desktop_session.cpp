// End-to-end test helpers: Xvfb, the programs under test, xdotool and xwd, each run as a child
// process with a time limit.
#include "desktop_session.hpp"

#include <sys/prctl.h>

#include <QDir>
#include <QProcessEnvironment>
#include <QTemporaryFile>
#include <QtEndian>
#include <csignal>
#include <thread>

namespace rvtools::e2e {
namespace {

using Clock = std::chrono::steady_clock;

// A child that outlives a crashed or timed-out test binary would keep its display or its
// window; the kernel kills it with its parent instead.
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

}  // namespace

DesktopProgram::DesktopProgram(const QString& path, const QString& display) {
  dieWithParent(process_);
  process_.setProcessEnvironment(displayEnvironment(display));
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_.start(path, {});
  EXPECT_TRUE(process_.waitForStarted(10000)) << path.toStdString();
}

DesktopProgram::~DesktopProgram() {
  stop(process_);
}

bool DesktopProgram::waitForLogLine(const QString& line, Milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  for (;;) {
    log_ += QString::fromUtf8(process_.readAllStandardOutput());
    if (('\n' + log_).contains('\n' + line + '\n')) return true;
    if (Clock::now() >= deadline) return false;
    if (!process_.waitForReadyRead(100)) std::this_thread::sleep_for(100ms);
  }
}

QString DesktopProgram::log() {
  log_ += QString::fromUtf8(process_.readAllStandardOutput());
  return log_;
}

int DesktopProgram::waitForExit(Milliseconds timeout) {
  const bool ended = process_.waitForFinished(static_cast<int>(timeout.count()));
  log();
  if (!ended || process_.exitStatus() != QProcess::NormalExit) return -1;
  return process_.exitCode();
}

void DesktopTest::SetUp() {
  // The server picks a free display number and writes it to its standard output once it
  // accepts connections.
  dieWithParent(server_);
  server_.setStandardErrorFile(QProcess::nullDevice());
  server_.start(RVTOOLS_XVFB,
                {"-displayfd", "1", "-screen", "0", "1600x1000x24", "-nolisten", "tcp"});
  const auto deadline = Clock::now() + 20s;
  while (!server_.canReadLine() && Clock::now() < deadline) server_.waitForReadyRead(100);
  const QString number = QString::fromLatin1(server_.readLine()).trimmed();
  ASSERT_FALSE(number.isEmpty()) << "Xvfb did not start";
  display_ = ':' + number;
}

void DesktopTest::TearDown() {
  stop(server_);
}

QByteArray DesktopTest::runClient(const QString& program, const QStringList& arguments,
                                  Milliseconds timeout) {
  QProcess client;
  dieWithParent(client);
  client.setProcessEnvironment(displayEnvironment(display_));
  client.start(program, arguments);
  const bool ended = client.waitForFinished(static_cast<int>(timeout.count()));
  if (!ended || client.exitStatus() != QProcess::NormalExit || client.exitCode() != 0) {
    stop(client);
    ADD_FAILURE() << (program + ' ' + arguments.join(' ')).toStdString()
                  << (ended ? " failed: " : " did not finish in time")
                  << client.readAllStandardError().toStdString();
    return {};
  }
  return client.readAllStandardOutput();
}

QString DesktopTest::findWindow(const QString& title) {
  const QByteArray found = runClient(
      RVTOOLS_XDOTOOL, {"search", "--sync", "--onlyvisible", "--name", '^' + title + '$'});
  return QString::fromLatin1(found).section('\n', 0, 0).trimmed();
}

void DesktopTest::pressKeys(const QString& window, const QStringList& keys) {
  runClient(RVTOOLS_XDOTOOL,
            QStringList{"windowfocus", "--sync", window, "key", "--delay", "40"} + keys);
}

void DesktopTest::typeText(const QString& window, const QString& text) {
  runClient(RVTOOLS_XDOTOOL, {"windowfocus", "--sync", window, "type", "--delay", "40", text});
}

// xclip hands the text over to a copy of itself that serves the clipboard until another program
// takes it or the X server ends.
void DesktopTest::putOnClipboard(const QByteArray& text) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  file.write(text);
  file.close();
  runClient(RVTOOLS_XCLIP, {"-selection", "clipboard", "-in", file.fileName()});
}

QByteArray DesktopTest::clipboardText() {
  return runClient(RVTOOLS_XCLIP, {"-selection", "clipboard", "-out"});
}

QImage DesktopTest::screenshot(const QString& window) {
  return imageOfXwd(runClient(RVTOOLS_XWD, {"-silent", "-id", window}));
}

QImage DesktopTest::waitForPicture(const QString& window,
                                   const std::function<bool(const QImage&)>& wanted,
                                   Milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  for (;;) {
    QImage picture = screenshot(window);
    if (picture.isNull() || wanted(picture) || Clock::now() >= deadline) return picture;
    std::this_thread::sleep_for(100ms);
  }
}

void DesktopTest::keepPicture(const QImage& picture, const QString& name) {
  const QString folder = qEnvironmentVariable("RVTOOLS_SCREENSHOTS");
  if (folder.isEmpty()) return;
  EXPECT_TRUE(picture.save(QDir(folder).filePath(name + ".png"), "PNG"));
}

QImage contentOf(const QImage& window, int columns, int lines) {
  const QSize size(2 * Border + columns * CellWidth, 2 * Border + lines * CellHeight);
  if (window.width() < size.width() || window.height() < size.height()) return {};
  const QPoint corner((window.width() - size.width()) / 2, window.height() - size.height());
  return window.copy(QRect(corner, size));
}

bool hasInk(const QImage& picture, const QRect& area, QColor paper) {
  if (!picture.rect().contains(area)) return false;
  return pixelsOfColour(picture, area, paper) < area.width() * area.height();
}

int pixelsOfColour(const QImage& picture, const QRect& area, QColor colour) {
  if (!picture.rect().contains(area)) return 0;
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += picture.pixelColor(x, y) == colour;
  }
  return count;
}

// An xwd dump: a header of big-endian 32-bit fields, the window's name, the colour map, then
// the pixels, line after line.
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

}  // namespace rvtools::e2e
