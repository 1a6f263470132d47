// Benchmark set-up on the headless host.
#include "setup.hpp"

#include "runtime/log.hpp"

namespace rvtools::bench {

void prepareTextWindow(Int depth, Int columns, Int lines) {
  static auto* host = new HeadlessHost;
  setHost(*host);
  setLogSink([](std::string_view) {});
  if (!ToolsInitialized) initrvtools();
  t_InitMemory();
  static const t_Font font = t_LoadFontResource("MenloBold 16x32.font");
  t_InitWindow(0, depth, false, font.Width * columns, font.Height * lines, 0, 0, font, true);
}

}  // namespace rvtools::bench
