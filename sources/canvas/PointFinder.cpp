#include "canvas/PointFinder.h"

#include <algorithm>
#include <cmath>

namespace {

/// Rejects most points without rounding them: those farther from the cursor along either axis than the radius
/// and what rounding can move them by.
class NearbyFilter {
  public:
    NearbyFilter(const CanvasScale& scale, const QPointF& cursor)
        : centre(scale.toNormalized(cursor)),
          reachX((kHitRadius + 1.0) / scale.Canvas().width()),
          reachY((kHitRadius + 1.0) / scale.Canvas().height()) {}

    [[nodiscard]] bool MayHit(const QPointF& point) const {
        // Written so that NaN stays a candidate: it counts as pixel 0.
        return !(std::abs(point.x() - centre.x()) > reachX) && !(std::abs(point.y() - centre.y()) > reachY);
    }

  private:
    QPointF centre;
    double reachX;
    double reachY;
};

/// The place on the segment from `from` to `to` that is nearest to the cursor on the canvas.
QPointF NearestOn(const QPointF& from, const QPointF& to, const CanvasScale& scale, const QPointF& cursor) {
    const QSizeF canvas = scale.Canvas();
    const auto onCanvas = [&](const QPointF& vector) {
        return QPointF(vector.x() * canvas.width(), vector.y() * canvas.height());
    };
    const QPointF along = onCanvas(to - from);
    const double squaredLength = QPointF::dotProduct(along, along);
    if (!(squaredLength > 0.0))
        return from;
    const double part = QPointF::dotProduct(cursor - onCanvas(from), along) / squaredLength;
    return from + (to - from) * std::clamp(part, 0.0, 1.0);
}

} // namespace

std::optional<PointIndex> FindPoint(const std::vector<TrackPath>& paths, const CanvasScale& scale,
                                    const QPointF& cursor) {
    const NearbyFilter nearby(scale, cursor);
    for (std::size_t path = 0; path < paths.size(); ++path) {
        const std::vector<QPointF>& points = paths[path].points;
        for (std::size_t point = 0; point < points.size(); ++point)
            if (nearby.MayHit(points[point]) &&
                Distance(scale.toWidgetPixels(points[point]), cursor) < kHitRadius)
                return PointIndex{static_cast<int>(path), static_cast<int>(point)};
    }
    return std::nullopt;
}

std::optional<SegmentPlace> FindSegment(const std::vector<TrackPath>& paths, const CanvasScale& scale,
                                        const QPointF& cursor) {
    std::optional<SegmentPlace> nearest;
    double limit = kHitRadius;
    const QSizeF canvas = scale.Canvas();
    for (std::size_t path = 0; path < paths.size(); ++path) {
        const std::vector<QPointF>& points = paths[path].points;
        for (std::size_t point = 0; point + 1 < points.size(); ++point) {
            const QPointF place = NearestOn(points[point], points[point + 1], scale, cursor);
            const double distance =
                Distance({place.x() * canvas.width(), place.y() * canvas.height()}, cursor);
            if (!(distance < limit))
                continue;
            limit = distance;
            nearest = {{static_cast<int>(path), static_cast<int>(point)}, place};
        }
    }
    return nearest;
}
