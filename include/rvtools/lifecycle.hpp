// SPDX-License-Identifier: MIT
// rvtools: a program's life: its memory, its windows and its end.
//
// The first `t_InitWindow` creates the video memory and the window records (`t_InitMemory`),
// starts the refresh and carves the window's blocks out of the video memory; a program ends
// when its entry function returns or when it calls `t_QuitProgram`. These operations use text
// output, colours and the menus, so they sit above all of them.
#pragma once

#include <string>

#include "rvtools/types.hpp"

namespace rvtools {

// Creates the video memory, the window records and the menu actions, once.
void t_InitMemory();

// A graphic window of width x height pixels at a depth of 1, 4, 8, 16, 24 or 32 bits, with a
// border around it and `font` for its text (a font without data gives the window no text).
void t_InitWindow(UInt8 window, Int bitDepth, bool autoUpdate, Int width, Int height,
                  Int borderWidth, Int borderHeight, const t_Font& font, bool titleVisible);
// A graphic window of columns x lines characters of the named font resource.
void t_InitWindow(UInt8 window, Int bitDepth, Int columns, Int lines, Int border,
                  const std::string& fontFileName);

// Leaves "(Programm Ende)" on the window's last line and ends the calling thread; the
// application keeps running.
[[noreturn]] void t_QuitProgram(UInt8 window);

}  // namespace rvtools
