#include "canvas/PointFinder.h"

#include <cmath>

namespace {

/// Finds most points to be far away without rounding them: those farther from the cursor along either axis
/// than the radius and what rounding can move them by.
class NearbyFilter {
  public:
    NearbyFilter(const CanvasScale& scale, const QPointF& cursor)
        : centre(scale.toNormalized(cursor)),
          reachX((kHitRadius + 1.0) / scale.Canvas().width()),
          reachY((kHitRadius + 1.0) / scale.Canvas().height()) {}

    [[nodiscard]] bool MayHit(const QPointF& point) const {
        // Written so that what is not a number stays a candidate: it counts as pixel 0.
        return !(std::abs(point.x() - centre.x()) > reachX) && !(std::abs(point.y() - centre.y()) > reachY);
    }

  private:
    QPointF centre;
    double reachX;
    double reachY;
};

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
