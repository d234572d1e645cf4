#include "document/TrackGeometry.h"

#include <algorithm>
#include <cmath>

namespace {

/// Widgets cannot be larger than this in either direction.
constexpr double kMaxSide = (1 << 24) - 1;

int RoundedPixels(double length) {
    return static_cast<int>(std::clamp(std::floor(length + 0.5), 1.0, kMaxSide));
}

/// A side stretched by the larger resolution over the smaller one. Resolutions that give no ratio leave it as
/// it is.
double Stretched(double side, double larger, double smaller) {
    const double stretched = side * larger / smaller;
    return std::isfinite(stretched) && larger / smaller > 0.0 ? stretched : side;
}

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

QSize ShownImageSize(const QSize& image, double xResolution, double yResolution, double scale) {
    const double width = image.width() * scale;
    const double height = image.height() * scale;
    if (yResolution > xResolution)
        return {RoundedPixels(width), RoundedPixels(Stretched(height, yResolution, xResolution))};
    return {RoundedPixels(Stretched(width, xResolution, yResolution)), RoundedPixels(height)};
}

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
