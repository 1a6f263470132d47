// SPDX-License-Identifier: MIT
// printer: a text file on the virtual printer. The program asks for a file name; an empty
// answer lets File > Open... choose the file instead. It reads the whole file, shows its first
// lines, and prints it on the virtual printer (Window > Show Virtual Printer shows the paper,
// File > Print... puts it on real paper or into a PDF file).
//
//   Printer.app/Contents/MacOS/printer
//   cd examples/data
//   Printer.app/Contents/MacOS/printer --headless --keys 'notes.txt\r' --screen screen.txt
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;
constexpr Int OpenTag = 100;  // the tag of File > Open...
constexpr Int ShownLines = 6;

// [manual printer-open]
// File > Open... does something once the program has given it an entry of its own: the
// panel's title, a note, a proposed name and the file types. After the user has chosen, the
// entry holds the path, and the menu choice waits on the menu event queue.
void offerOpenPanel() {
  t_MenuAction open;
  open.Tag = OpenTag;
  open.Action = OpenTag;
  open.Title = "Print a text file";
  open.Note = "The file goes to the virtual printer.";
  open.FileTypes = "txt";
  t_AddMenuAction(open);
}

std::string pathChosenInPanel() {
  for (;;) {
    const std::optional<t_MenuEvent> choice = t_TakeMenuEvent();
    if (choice && choice->ItemAction == OpenTag) return t_MenuActionOf(OpenTag)->FilePath;
    if (!choice) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}
// [end]

// [manual printer-print]
// The file's text with its line ends as carriage returns, which end a line on the screen (a
// line feed alone only moves the cursor down).
std::string screenLines(const std::vector<UInt8>& bytes, Int lines) {
  std::string text;
  for (const UInt8 byte : bytes) {
    if (byte == '\n' && --lines == 0) break;
    text += byte == '\n' ? '\r' : static_cast<char>(byte);
  }
  return text;
}

void print(const std::string& path) {
  const std::vector<UInt8> bytes = t_ReadFile(path);
  if (bytes.empty()) {
    t_Print(Screen, "\rCannot read "s + path + ".");
    return;
  }
  t_PrinterClear();
  t_PrinterPrint(std::string(bytes.begin(), bytes.end()));
  t_ConsolePrint("printer: "s + std::to_string(bytes.size()) + " bytes printed\n");
  t_Print(Screen, "\r"s + screenLines(bytes, ShownLines) + "\r\r");
  t_Print(Screen, std::to_string(bytes.size()) + " bytes are on the virtual printer.");
}
// [end]

}  // namespace

void printer() {
  // Set-up.
  offerOpenPanel();
  t_InitWindow(0, 24, 56, 14, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");

  // Run.
  std::string path = t_InputForm(Screen, "File (none: File > Open...): ", "", false, 4, 24);
  if (path.empty()) {
    t_Print(Screen, "Choose the file with File > Open...");
    path = pathChosenInPanel();
  }
  print(path);

  // End.
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, printer);
}
