// SPDX-License-Identifier: MIT
// The auxiliary windows and files: text for the virtual printer and the system console, the
// general pasteboard's text, and whole files. The text views themselves belong to the host;
// a missing view is logged, with a beep, under the name of the operation that needed it.
#include "runtime/aux_windows.hpp"

#include "runtime/files.hpp"
#include "runtime/log.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

void reportMissingView(std::string_view operation, UInt8 window) {
  const char* name = window == VirtualPrinterWindowNumber ? "Virtual printer" : "System console";
  logLine(operation, ": ", name, " window is nil, resource undefined.");
  t_Beep();
}

void appendToTextWindow(std::string_view operation, UInt8 window, const std::string& text) {
  if (!host().appendToTextView(window, text)) reportMissingView(operation, window);
}

}  // namespace

std::optional<std::string> textWindowText(std::string_view operation, UInt8 window) {
  std::optional<std::string> text = host().textViewText(window);
  if (!text) reportMissingView(operation, window);
  return text;
}

void clearTextWindow(std::string_view operation, UInt8 window) {
  if (!host().clearTextView(window)) reportMissingView(operation, window);
}

void t_PrinterPrint(const std::string& text) {
  appendToTextWindow("t_PrinterPrint", VirtualPrinterWindowNumber, text);
}

void t_ConsolePrint(const std::string& text) {
  appendToTextWindow("t_ConsolePrint", SystemConsoleWindowNumber, text);
}

void t_PrinterClear() {
  clearTextWindow("t_PrinterClear", VirtualPrinterWindowNumber);
}

void t_ConsoleClear() {
  clearTextWindow("t_ConsoleClear", SystemConsoleWindowNumber);
}

std::string t_PasteboardText() {
  return host().pasteboardText();
}

void t_SetPasteboardText(const std::string& text) {
  host().setPasteboardText(text);
}

std::vector<UInt8> t_ReadFile(const std::string& path) {
  return readWholeFile(path);
}

}  // namespace rvtools
