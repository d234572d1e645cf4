#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

/// Scales any part of an image by taking the nearest pixel: coarse where it shrinks, but the time it takes
/// does not depend on how many pixels shrink to one.
class NearestScaler {
  public:
    /// @param source in Format_RGB32; it is shared, not copied
    /// @param target the size that the complete image is scaled to, at least 1 x 1
    NearestScaler(const QImage& source, const QSize& target) : source(source), target(target) {}

    /// Writes the part of the scaled image that `part` cuts out, which must lie inside the target.
    /// @param out an image in Format_RGB32; the part's top left pixel goes to (column, row) of it
    void Render(const QRect& part, QImage& out, const QPoint& place) const;

  private:
    QImage source;
    QSize target;
};
