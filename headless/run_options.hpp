// SPDX-License-Identifier: MIT
// Internal: what runHeadless reads from its command line. A program run without a display can
// be typed at, clicked and given menu choices from there, and leave its picture and its screen
// in files when it ends:
//
//   --keys <text>     types the text; {Left}, {F1}, {Backspace} ... are keys without text,
//                     \r \n \t \e \\ \{ and \xNN escapes as in C (\e is Escape), {wait <ms>}
//                     a pause before the next key; each key is held until the next one
//   --click <x>,<y>   a left click at pixel (x, y) of the first window's drawing area
//   --menu <item>     chooses the menu item of that title
//   --record <path>   records the first window as an animated GIF from when it is up until the
//                     program has ended (t_RecordStart)
//   --picture <path>  the first window's picture as a PNG file when the program has ended
//   --screen <path>   its text screen and colours as a text file when the program has ended
//   --sound <path>    the sound the program plays, in its time, as a WAV file
//   --seed <n>        t_Randomize(n) before the program starts
//
// Inputs are given in the order they stand, each once the program has taken the keys before
// it. Arguments runHeadless does not know are left to the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "rvtools/keys.hpp"

namespace rvtools::headless {

struct Click {
  Int X = 0;
  Int Y = 0;
};

struct MenuChoice {
  std::string ItemTitle;
};

// {wait <ms>}: the time before the next key goes down.
struct Pause {
  Int Milliseconds = 0;
};

// What one --keys types: key presses and the pauses between them.
using KeyStep = std::variant<KeyStroke, Pause>;

using ScriptedInput = std::variant<std::vector<KeyStep>, Click, MenuChoice>;

struct RunOptions {
  std::vector<ScriptedInput> Inputs;
  std::string RecordPath;
  std::string PicturePath;
  std::string ScreenPath;
  std::string SoundPath;
  std::optional<Int> Seed;
  std::string Error;  // what was wrong with the command line; empty when all was understood
};

RunOptions parseRunOptions(int argc, char** argv);

// The key strokes that type `text` with its escapes and named keys; `error` says what could
// not be typed.
std::vector<KeyStroke> keyStrokesOf(std::string_view text, std::string& error);

// The steps of a --keys text: its key strokes, and a pause for each {wait <ms>} in it.
std::vector<KeyStep> keyStepsOf(std::string_view text, std::string& error);

}  // namespace rvtools::headless
