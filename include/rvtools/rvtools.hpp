// rvtools: the screen of an early-1980s home computer for an ordinary sequential program.
//
// One header for a user program. Its sections:
//   types.hpp    the shared records: t_Window, t_Font, t_Event, t_MenuEvent, Text
//   host.hpp     the platform seam that a host (Qt shell, headless) implements
//   runtime.hpp  globals, start-up, the program thread, video memory, window initialisation,
//                window frames, random numbers and text utilities, quitting, the
//                auxiliary windows and files
//   text.hpp     fonts, glyphs, the cursor, printing with control codes and display modes
//   display.hpp  window images, low-resolution graphics, colours, the refresh
//   input.hpp    keys, the line input editor, mouse, menus
#pragma once

#include "rvtools/display.hpp"
#include "rvtools/host.hpp"
#include "rvtools/input.hpp"
#include "rvtools/runtime.hpp"
#include "rvtools/text.hpp"
#include "rvtools/types.hpp"
