// Text between the windows and the clipboard on the offscreen platform: Copy Text as the
// characters the font shows, Paste typed into a waiting line input, the system console showing
// the log, and the pasteboard window following the clipboard both ways, bad contents included.
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <future>

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

}  // namespace
}  // namespace rvtools::testing
