// SPDX-License-Identifier: MIT
// menu: a text menu chosen with the cursor keys. Up and Down move the bar, Return chooses,
// Escape leaves without a choice. The chosen line is shown in inverse video.
//
//   Menu.app/Contents/MacOS/menu
//   Menu.app/Contents/MacOS/menu --headless --keys '{Down}{Down}{Up}{Down}\r' --screen screen.txt
#include <string>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
using namespace std::string_literals;

namespace {

constexpr UInt8 Screen = 0;
constexpr const char* Drinks[] = {"Tea", "Coffee", "Cocoa", "Lemonade", "Water"};
constexpr Int DrinkCount = 5;
constexpr Int FirstLine = 4;

void showDrink(Int index, bool chosen) {
  t_Vtab(Screen, FirstLine + index);
  t_Htab(Screen, 3);
  if (chosen) t_Inverse(Screen);
  t_Print(Screen, " "s + Drinks[index] + " ");
  t_Normal(Screen);
}

// [manual menu-keys]
// The next key as a number: a character code, or one of the KeyValue codes of the keys that
// type no character.
Int nextKey() {
  return scalarsOf(t_GetKey(Screen)).front();
}

// Moves the bar until Return or Escape; the index of the drink, or -1 after Escape.
Int chooseDrink() {
  Int chosen = 0;
  showDrink(chosen, true);
  for (;;) {
    const Int key = nextKey();
    if (key == KeyValue::Return) return chosen;
    if (key == KeyValue::Escape) return -1;
    const Int step = key == KeyValue::Down ? 1 : key == KeyValue::Up ? -1 : 0;
    if (step == 0) continue;
    showDrink(chosen, false);
    chosen = (chosen + step + DrinkCount) % DrinkCount;
    showDrink(chosen, true);
  }
}
// [end]

}  // namespace

void menu() {
  // Set-up: the window and the list.
  t_InitWindow(0, 24, 32, 12, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(Screen, "\f");
  t_Header(Screen, "Drinks", "Up, Down, Return");
  t_TextLine(Screen);
  for (Int index = 0; index < DrinkCount; ++index) showDrink(index, false);
  // [manual menu-cursor]
  // One request fewer than none keeps the cursor hidden while t_GetKey waits.
  t_CursorOff(Screen);
  // [end]

  // Run.
  const Int drink = chooseDrink();

  // End.
  t_CursorOn(Screen);
  t_Vtab(Screen, FirstLine + DrinkCount + 1);
  t_Htab(Screen, 1);
  t_Print(Screen, drink < 0 ? std::string("Nothing, then.")
                            : std::string("One ") + Drinks[drink] + ", coming up.");
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, menu);
}
