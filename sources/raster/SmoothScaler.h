#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

/// Scales any part of an image smoothly, without the rest: along an axis that grows it blends the two nearest
/// pixels, along one that shrinks it averages all that a pixel covers. Every pixel equals that of Qt's own
/// smooth scaling of the complete image, so that parts fit together whatever their order and size.
class SmoothScaler {
  public:
    /// @param source in Format_RGB32; it is shared, not copied
    /// @param target the size that the complete image is scaled to, at least 1 x 1
    SmoothScaler(const QImage& source, const QSize& target);

    /// Writes the part of the scaled image that `part` cuts out, which must lie inside the target. A large
    /// part is divided among the processors; all threads have ended when this returns.
    /// @param out an image in Format_RGB32; the part's top left pixel goes to (column, row) of it
    void Render(const QRect& part, QImage& out, const QPoint& place) const;

  private:
    QImage source;
    QSize target;
};
