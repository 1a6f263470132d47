// End-to-end test helpers: a fixture that gives each test an X server of its own (Xvfb on a
// display number the server picks itself), starts desktop programs on it with their log
// captured, types with real X key events (xdotool), takes the X server's picture of a window
// (xwd) and reads and writes the X clipboard as another program (xclip). Every process it starts
// is killed when the test ends, or when the test binary or the X server dies.
#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>

namespace rvtools::e2e {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::milliseconds;

// A desktop program running on the test's X server, its standard output collected.
class DesktopProgram {
 public:
  DesktopProgram(const QString& path, const QString& display);
  ~DesktopProgram();

  // Waits until the log holds `line` as a whole line.
  bool waitForLogLine(const QString& line, Milliseconds timeout);
  QString log();
  bool isRunning() const { return process_.state() == QProcess::Running; }
  // Waits for the program to end; its exit code, or -1 when it did not end normally in time.
  int waitForExit(Milliseconds timeout);

 private:
  QProcess process_;
  QString log_;
};

class DesktopTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::unique_ptr<DesktopProgram> start(const QString& path) {
    return std::make_unique<DesktopProgram>(path, display_);
  }
  // The visible window titled exactly `title`, waited for; empty when it does not appear.
  QString findWindow(const QString& title);
  // Focuses `window` and sends the keys (xdotool key names) one after another.
  void pressKeys(const QString& window, const QStringList& keys);
  // Focuses `window` and types `text` character by character.
  void typeText(const QString& window, const QString& text);
  // Puts `text` on the X clipboard, owned by another program; and the clipboard's text.
  void putOnClipboard(const QByteArray& text);
  QByteArray clipboardText();
  // The X server's picture of `window`; a null image when it could not be taken.
  QImage screenshot(const QString& window);
  // Saves `picture` as <name>.png into the folder named by RVTOOLS_SCREENSHOTS, when it is set;
  // this is how the pictures of the demo in docs/ are taken.
  static void keepPicture(const QImage& picture, const QString& name);
  // Takes pictures of `window` until one satisfies `wanted`, or the time is up; the last one.
  QImage waitForPicture(const QString& window, const std::function<bool(const QImage&)>& wanted,
                        Milliseconds timeout);

 private:
  // Runs an X client on the test's display with a time limit; its standard output.
  QByteArray runClient(const QString& program, const QStringList& arguments,
                       Milliseconds timeout = 20s);

  QProcess server_;
  QString display_;
};

// Where things lie in the picture of a graphic window with a border of 16 pixels around
// characters of 16 x 32 pixels; columns and lines count from 0.
inline constexpr int Border = 16, CellWidth = 16, CellHeight = 32;
inline QRect cellArea(int column, int line) {
  return {Border + CellWidth * column, Border + CellHeight * line, CellWidth, CellHeight};
}
// The window's content of `columns` x `lines` characters with its border, cut from the bottom
// of the window's picture: whatever the window shows above it, such as a menu bar, stays out.
// Null when the picture is smaller.
QImage contentOf(const QImage& window, int columns, int lines);
// Whether any pixel of the area differs from `paper`; false for an area outside the picture.
bool hasInk(const QImage& picture, const QRect& area, QColor paper = Qt::black);
// The number of pixels of exactly `colour` in the area; 0 for an area outside the picture.
int pixelsOfColour(const QImage& picture, const QRect& area, QColor colour);

// The picture in an xwd dump of 24-bit true colour at 32 bits a pixel; null for anything else.
QImage imageOfXwd(const QByteArray& dump);

}  // namespace rvtools::e2e
