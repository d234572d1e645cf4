#include "document/PathLength.h"

#include <cmath>

namespace {

double LengthOf(const QPointF& from, const QPointF& to, const WorldTransform& world) {
    return std::hypot((to.x() - from.x()) * world.xScale, (to.y() - from.y()) * world.yScale);
}

double LengthOf(const TrackPath& path, const WorldTransform& world) {
    double length = 0.0;
    for (std::size_t point = 1; point < path.points.size(); ++point)
        length += LengthOf(path.points[point - 1], path.points[point], world);
    return length;
}

} // namespace

DrawnLengths LengthsTo(const QPointF& end, const TrackPath& path, const WorldTransform& world) {
    const double segment = LengthOf(path.points.back(), end, world);
    return {segment, LengthOf(path, world) + segment};
}

std::optional<DrawnLengths> LengthsAt(std::size_t point, const TrackPath& path, const WorldTransform& world) {
    const std::size_t end = point == 0 ? 1 : point;
    if (end >= path.points.size())
        return std::nullopt;
    return DrawnLengths{LengthOf(path.points[end - 1], path.points[end], world), LengthOf(path, world)};
}
