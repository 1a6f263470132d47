// SPDX-License-Identifier: MIT
// form: a form of line inputs, one for each input mode of t_InputForm, and one that only shows
// its text. The keys that edit a line: Left, Right, Home, End, Backspace, Delete, Return,
// Escape (empties the line), Control-Z (clears it), Control-^ followed by three digits (types
// the character of that code).
//
//   Form.app/Contents/MacOS/form
//   Form.app/Contents/MacOS/form --headless --keys 'Ada Lovelace\r3x6\r...' --screen screen.txt
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;

// [manual form-modes]
// Input modes: 4 any character, 2 an integer, 3 a real number, 1 any character and codes 1..255
// by Control-^, 0 any character.
constexpr Int AnyText = 4;
constexpr Int Integer = 2;
constexpr Int RealNumber = 3;
constexpr Int AnyCode = 1;
// [end]

}  // namespace

void form() {
  // Set-up.
  // [manual form-paste]
  // Edit > Paste types the pasteboard's text into the form, as if it were typed.
  t_SetPasteHandler(t_PasteAsKeys);
  // [end]
  t_InitWindow(0, 24, 50, 14, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");
  t_Header(Screen, "Form", "t_InputForm in each mode");
  t_TextLine(Screen);

  // Run: each form prints its prompt, edits its line until Return or Escape, and moves on.
  // [manual form-run]
  const std::string name = t_InputForm(Screen, "Name (any text):       ", "", false, AnyText, 20);
  const std::string age = t_InputForm(Screen, "Age (an integer):      ", "", false, Integer, 3);
  const std::string height =
      t_InputForm(Screen, "Height (real number):  ", "1.70", false, RealNumber, 6);
  const std::string signs = t_InputForm(Screen, "Signs (Control-^ nnn): ", "", false, AnyCode, 4);
  const std::string remark = t_InputForm(Screen, "Remark (mode 0):       ", "", false, 0, 24);
  // [end]

  // End: the answers, one of them in a form that only shows its text.
  // [manual form-end]
  const Int years = BytesToInteger(TextToBytes(age));
  t_Print(Screen,
          "\r"s + name + ", " + height + " m, " + std::to_string(years + 10) + " in ten years.\r");
  t_InputForm(Screen, "Shown, not edited:     ", remark, true, AnyText, 24);
  // [end]
  t_Print(Screen, "\r"s + std::to_string(scalarsOf(signs).size()) + " signs entered.");
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, form);
}
