// SPDX-License-Identifier: MIT
// The layout of a graphic window's picture: the scale factor, the centred content and the view's
// place in it, and the mapping of window points back to window coordinates.
#include "shell/picture_layout.hpp"

#include <algorithm>
#include <cmath>

namespace rvtools::shell {
namespace {

// Device pixels per picture pixel: a whole factor when one fits, else the fractional one.
double deviceScale(double availableWidth, double availableHeight, double contentWidth,
                   double contentHeight) {
  const double fit = std::min(availableWidth / contentWidth, availableHeight / contentHeight);
  return fit >= 1 ? std::floor(fit) : fit;
}

}  // namespace

QPointF PictureLayout::windowCoordinates(QPointF windowPoint) const {
  const double x = std::floor((windowPoint.x() - Content.x()) / Scale);
  const double y = std::floor((windowPoint.y() - Content.y()) / Scale);
  return {x, static_cast<double>(ContentHeight) - y};
}

PictureLayout layoutPicture(QSize windowSize, double devicePixelRatio,
                            const PictureGeometry& geometry) {
  PictureLayout layout;
  const double contentWidth = static_cast<double>(geometry.Width + 2 * geometry.BorderWidth);
  const double contentHeight = static_cast<double>(geometry.Height + 2 * geometry.BorderHeight);
  if (geometry.Width < 1 || geometry.Height < 1 || windowSize.isEmpty() || devicePixelRatio <= 0) {
    layout.Content = QRectF(QPointF(0, 0), windowSize);
    layout.View = QRect(QPoint(0, 0), windowSize);
    layout.ContentHeight = windowSize.height();
    return layout;
  }
  const double deviceWidth = windowSize.width() * devicePixelRatio;
  const double deviceHeight = windowSize.height() * devicePixelRatio;
  const double scale = deviceScale(deviceWidth, deviceHeight, contentWidth, contentHeight);
  // The content's corner falls on a whole device pixel, so that pixels stay sharp.
  const double left = std::floor((deviceWidth - contentWidth * scale) / 2);
  const double top = std::floor((deviceHeight - contentHeight * scale) / 2);
  layout.Scale = scale / devicePixelRatio;
  layout.Content = QRectF(left / devicePixelRatio, top / devicePixelRatio,
                          contentWidth * layout.Scale, contentHeight * layout.Scale);
  layout.View = QRectF(layout.Content.x() + geometry.BorderWidth * layout.Scale,
                       layout.Content.y() + geometry.BorderHeight * layout.Scale,
                       geometry.Width * layout.Scale, geometry.Height * layout.Scale)
                    .toRect();
  layout.ContentHeight = geometry.Height + 2 * geometry.BorderHeight;
  return layout;
}

}  // namespace rvtools::shell
