// SPDX-License-Identifier: MIT
// rvtools: pictures and recordings of what a program shows, as image files.
//
// The picture library (rvtools::picture) writes a window's picture, the image that
// t_WindowImage composes, pixel for pixel, as a PNG file, reads PNG files back as pictures, and
// records a window as an animated GIF.
// Files are written under a temporary name beside the final one and renamed when complete, so
// that a failure never leaves half a file under the name asked for. The desktop, terminal and
// headless hosts link it; the core does not.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "rvtools/display.hpp"
#include "rvtools/types.hpp"

namespace rvtools {

// Writes graphic window `window`'s current picture as a PNG file at `path`. False, with one
// log line, when the window has no picture (not a graphic window, not initialised, not
// visible) or the file cannot be written.
bool t_SavePicture(UInt8 window, const std::string& path);

// The picture in the PNG file at `path` as bytes A, R, G, B, whatever its colour type, bit depth
// and interlacing: samples as the file holds them (16 bits rounded to 8, no gamma applied),
// palettes and tRNS expanded, opaque where the file has no alpha. Nothing, with one log line,
// when the file is missing, unreadable, malformed, or its picture has a side over
// LargestPictureSide; a picture's memory is allocated only once its declared size is accepted.
std::optional<t_Image> t_LoadPicture(const std::string& path);

// Records graphic window `window`'s picture as an animated GIF at `path` that plays once and then
// keeps its last picture, from now until t_RecordStop or the end of the application, which finishes
// the file. A frame is taken whenever the refresh (or t_WindowUpdate) shows a changed picture, with
// the moment it was shown: delays add up to the time recorded. Colours are exact whenever a frame
// has at most 256 of them (always at depths 1 to 16); beyond that a median cut chooses them.
// Frames are encoded on a thread of the recording's own; when it falls behind, pictures are
// dropped, never waited for. A window initialised anew at another size is cut or filled with black
// to the size it had at the start. False, with one log line, when the window is no initialised
// graphic window, is being recorded already, or the file cannot be created.
bool t_RecordStart(UInt8 window, const std::string& path);
// Ends the recording of window `window`: takes its last picture and finishes the file. False,
// with one log line, when the window is not being recorded, showed no picture, or the file
// could not be written (nothing is then left under its name). A line also says how many
// frames were dropped, if any.
bool t_RecordStop(UInt8 window);
// Whether window `window` is being recorded.
bool t_IsRecording(UInt8 window);
// Called on the thread that started or stopped a recording, after it did; a host shows a sign
// while a window records. An empty observer removes it.
void setRecordingObserver(std::function<void(UInt8 window, bool recording)> observer);

}  // namespace rvtools
