#include "tools/track/PointCheck.h"

#include "tools/commandline/DecimalText.h"

#include <cmath>

namespace {

std::string Shown(const QPointF& point) {
    return RoundedDecimal(point.x()) + ", " + RoundedDecimal(point.y());
}

bool IsFinite(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

bool PointCheck::Take(const PointRecord& point, const Warn& warn) {
    if (point.track == static_cast<std::int64_t>(points.size()))
        points.push_back(0);
    else if (points.empty())
        return false;
    CheckNumbers(point, warn);
    CheckPlace(point, warn);
    ++points.back();
    return true;
}

void PointCheck::CheckNumbers(const PointRecord& point, const Warn& warn) const {
    if (const auto path = static_cast<std::int64_t>(points.size()) - 1; point.track != path)
        warn("Track " + std::to_string(point.track) + " neither continues Track " + std::to_string(path) +
             " nor starts the next: the point is read as one of Track " + std::to_string(path));
    else if (point.segment != points.back())
        warn("Segment " + std::to_string(point.segment) + " where " + std::to_string(points.back()) +
             " was expected");
    if (point.method < 1)
        warn("Method " + std::to_string(point.method) + " is less than 1");
}

void PointCheck::CheckPlace(const PointRecord& point, const Warn& warn) const {
    if (!IsFinite(point.relative)) {
        warn("the relative coordinates " + Shown(point.relative) + " are not finite");
        return;
    }
    const QPointF expected = world.PointOf(point.relative);
    const double xBound = tolerance * (std::abs(world.xScale) + std::abs(world.xOffset));
    const double yBound = tolerance * (std::abs(world.yScale) + std::abs(world.yOffset));
    // Negated so that NaN on either side counts as a difference.
    if (!(std::abs(point.place.x() - expected.x()) <= xBound) ||
        !(std::abs(point.place.y() - expected.y()) <= yBound))
        warn("X, Y are " + Shown(point.place) +
             " where the relative coordinates, which alone are read, mean " + Shown(expected));
}
