// SPDX-License-Identifier: MIT
// Kessvind, the drop demo: its sections, so that a benchmark can run the drops on their own.
#pragma once

#include "rvtools/types.hpp"

namespace kessvind {

// The answers to the two questions.
struct Settings {
  rvtools::Int delay = 0;  // hundredths of a millisecond between steps; below 1 no pauses
  bool sound = false;      // whether a landing bit clicks
};

void openScreen();                                // window, header, regular font
Settings askSettings();                           // the delay and the sound question
void drawScene();                                 // tub, banner, specks
rvtools::Int runDrops(const Settings& settings);  // bits until the tub is full; their count
void program();                                   // all of it, then t_QuitProgram

}  // namespace kessvind
