#pragma once

#include "document/formats/TrackPath.h"

#include <QPointF>

/// A rectangle in normalised coordinates that grows to include points; empty at first.
class Extent {
  public:
    /// NaN counts as 0, where it is painted.
    void Add(const QPointF& point);
    void Add(const RulerMarks& marks);

    [[nodiscard]] bool IsEmpty() const { return !(left <= right); }
    [[nodiscard]] bool Meets(const Extent& other) const {
        return left <= other.right && other.left <= right && top <= other.bottom && other.top <= bottom;
    }
    /// Whether a line cannot enter: both ends are beyond one side. A line with NaN may enter.
    [[nodiscard]] bool Misses(const QPointF& one, const QPointF& other) const {
        return (one.x() < left && other.x() < left) || (one.x() > right && other.x() > right) ||
               (one.y() < top && other.y() < top) || (one.y() > bottom && other.y() > bottom);
    }
    /// The same for the outline of a band.
    [[nodiscard]] bool Misses(const RulerMarks::Band& band) const {
        return Misses(band[0], band[1]) && Misses(band[1], band[2]) && Misses(band[2], band[3]) &&
               Misses(band[3], band[0]);
    }
    [[nodiscard]] QPointF TopLeft() const { return {left, top}; }
    [[nodiscard]] QPointF BottomRight() const { return {right, bottom}; }

  private:
    double left = 1e308;
    double right = -1e308;
    double top = 1e308;
    double bottom = -1e308;
};
