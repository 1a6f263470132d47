// SPDX-License-Identifier: MIT
// Printing a whole screen: 80 x 25 characters of 16 x 32 pixels at 24 bits through t_Print,
// beside Qt drawing the same text with QPainter::drawText into an image of the same size in the
// same face (DejaVu Sans Mono Bold at a 16-pixel advance), the way a program would draw text
// without this library, and beside a memcpy of the screen's bytes.
#include <benchmark/benchmark.h>

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstring>
#include <string>
#include <vector>

#include "setup.hpp"

namespace rvtools::bench {
namespace {

constexpr Int Columns = 80;
constexpr Int Lines = 25;
constexpr Int CellWidth = 16;
constexpr Int CellHeight = 32;
constexpr Int ScreenBytes = Columns * CellWidth * Lines * CellHeight * 3;

// Line n of the screen: 80 printable ASCII characters, starting one character later each line.
std::string screenLine(Int n) {
  std::string line;
  for (Int column = 0; column < Columns; ++column) {
    line += static_cast<char>(33 + (n + column) % 94);
  }
  return line;
}

std::string screenText() {
  std::string text;
  for (Int n = 0; n < Lines; ++n) text += screenLine(n);
  return text;
}

void BM_PrintScreen(benchmark::State& state) {
  prepareTextWindow(24, Columns, Lines);
  // The cursor goes home before every screen; the scroll that the last character's wrap asks
  // for is switched off, so every iteration draws exactly the 2,000 cells.
  Windows[0].ScrollLock = true;
  const std::string text = screenText();
  for (auto _ : state) {
    t_CursorHome(0);
    t_Print(0, text);
  }
  benchmark::DoNotOptimize(VideoMemory.data());
  state.SetItemsProcessed(state.iterations() * Columns * Lines);
  state.SetBytesProcessed(state.iterations() * ScreenBytes);
}
BENCHMARK(BM_PrintScreen)->Unit(benchmark::kMicrosecond);

// The offscreen platform lets QGuiApplication run without a display; it is created once.
void ensureGuiApplication() {
  static QGuiApplication* application = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "rvtools_bench";
    static char* argv[] = {name, nullptr};
    return new QGuiApplication(argc, argv);
  }();
  benchmark::DoNotOptimize(application);
}

// DejaVu Sans Mono Bold at the largest pixel size whose advance is one 16-pixel cell.
QFont cellFont() {
  QFont font("DejaVu Sans Mono");
  font.setBold(true);
  font.setStyleHint(QFont::Monospace);
  for (int pixels = 32; pixels > 8; --pixels) {
    font.setPixelSize(pixels);
    if (QFontMetrics(font).horizontalAdvance(QLatin1Char('M')) <= CellWidth) break;
  }
  return font;
}

// Arguments: whether the background is painted first, so that Qt writes every pixel as
// t_Print does, and the image's bits per pixel: 24 as the window, or 32, Qt's own format.
void BM_QPainterScreen(benchmark::State& state) {
  ensureGuiApplication();
  const bool paintBackground = state.range(0) != 0;
  const Int bits = state.range(1);
  QImage image(static_cast<int>(Columns * CellWidth), static_cast<int>(Lines * CellHeight),
               bits == 24 ? QImage::Format_RGB888 : QImage::Format_RGB32);
  image.fill(Qt::black);
  const QFont font = cellFont();
  const int ascent = QFontMetrics(font).ascent();
  std::vector<QString> lines;
  for (Int n = 0; n < Lines; ++n) lines.push_back(QString::fromStdString(screenLine(n)));
  for (auto _ : state) {
    QPainter painter(&image);
    if (paintBackground) painter.fillRect(image.rect(), Qt::black);
    painter.setFont(font);
    painter.setPen(QColor(255, 255, 0));
    for (Int n = 0; n < Lines; ++n) {
      painter.drawText(0, static_cast<int>(n * CellHeight) + ascent, lines[n]);
    }
  }
  benchmark::DoNotOptimize(image.constBits());
  state.counters["advance"] = QFontMetrics(font).horizontalAdvance(QLatin1Char('M'));
  state.SetItemsProcessed(state.iterations() * Columns * Lines);
  state.SetBytesProcessed(state.iterations() * ScreenBytes / 3 * bits / 8);
}
BENCHMARK(BM_QPainterScreen)
    ->ArgNames({"background", "bits"})
    ->ArgsProduct({{1, 0}, {24, 32}})
    ->Unit(benchmark::kMicrosecond);

BENCHMARK(copyBaseline)->Name("BM_MemcpyScreen")->Arg(ScreenBytes)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace rvtools::bench
