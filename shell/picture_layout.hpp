// SPDX-License-Identifier: MIT
// Internal: where a graphic window's picture lies in its window, and how a point of the window
// maps back to window coordinates.
//
// The content of a graphic window is the drawing area of Width x Height pixels with a border of
// BorderWidth x BorderHeight around it. Enlarged, the whole content is scaled by the largest
// whole factor that fits (in device pixels, so that every picture pixel becomes the same square
// of screen pixels), centred; only when not even factor 1 fits is the factor fractional.
#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

#include "rvtools/types.hpp"

namespace rvtools::shell {

struct PictureGeometry {
  Int Width = 0;
  Int Height = 0;
  Int BorderWidth = 0;
  Int BorderHeight = 0;
};

struct PictureLayout {
  double Scale = 1;       // logical pixels per picture pixel
  QRectF Content;         // the scaled content, border included, within the window
  QRect View;             // the view's geometry: the scaled drawing area
  Int ContentHeight = 0;  // unscaled content height, Height + 2 x BorderHeight

  // A point of the window (logical pixels, origin top left) in window coordinates: unscaled
  // content pixels with the origin at the content's lower left.
  QPointF windowCoordinates(QPointF windowPoint) const;
};

// The layout for a window of `windowSize` logical pixels at `devicePixelRatio`. A geometry
// without a drawing area lays the view over the whole window at scale 1.
PictureLayout layoutPicture(QSize windowSize, double devicePixelRatio,
                            const PictureGeometry& geometry);

}  // namespace rvtools::shell
