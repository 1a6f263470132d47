// Keys typed on a real X server reach a program's t_GetKey with their values, and what the
// program prints shows in the X server's picture of its window.
#include <QRegularExpression>

#include "desktop_session.hpp"

namespace rvtools::e2e {
namespace {

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
