// SPDX-License-Identifier: MIT
// rvtools: the screen of an early-1980s home computer for an ordinary sequential program.
//
// One header for a user program. Its sections:
//   types.hpp       the shared records: t_Window, t_Font, t_Event, t_MenuEvent, Text
//   platform.hpp    the platform seam that a host implements, and what a host asks of the runtime
//   runtime.hpp     globals, the program thread, window frames, random numbers and text
//                   utilities, time, the auxiliary windows and files
//   text.hpp        fonts, glyphs, the cursor, printing with control codes and display modes
//   font_codes.hpp  the character that each font code shows, as Unicode
//   display.hpp     window images, low-resolution and pixel graphics, colours, the refresh
//   keys.hpp        key numbers, modifier flags and the values programs receive for keys
//   input.hpp       keys, the line input editor, mouse, menus
//   lifecycle.hpp   video memory and window initialisation, quitting
//   sound.hpp       tones and music
//   version.hpp     the version of rvtools
// A host (rvtools/host.hpp) or a picture library (rvtools/picture.hpp) has a header of its own.
#pragma once

#include "rvtools/display.hpp"
#include "rvtools/font_codes.hpp"
#include "rvtools/input.hpp"
#include "rvtools/keys.hpp"
#include "rvtools/lifecycle.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/sound.hpp"
#include "rvtools/text.hpp"
#include "rvtools/types.hpp"
#include "rvtools/version.hpp"
