// SPDX-License-Identifier: MIT
// Internal to the terminal host: a text cell that holds pixel drawings, shown as one terminal
// cell of quadrant blocks in two colours. The cell's paper is its most frequent colour; each
// quarter of the cell that holds any other colour is inked, in the mean of those colours. So a
// line one pixel wide still shows, as a row or column of quarter blocks, where a mean over the
// whole quarter would fade it into the paper.
#pragma once

#include "rvtools/types.hpp"
#include "terminal/cell_renderer.hpp"

namespace rvtools::terminal {

// The terminal cell for the `cellWidth` x `cellHeight` pixels from (`left`, `top`) of a picture
// `width` pixels wide (bytes alpha, red, green, blue, rows from the top). The caller keeps the
// area inside the picture.
Cell blockCellOf(const UInt8* pixels, Int width, Int left, Int top, Int cellWidth, Int cellHeight);

}  // namespace rvtools::terminal
