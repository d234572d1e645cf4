#pragma once

#include "canvas/CanvasScale.h"
#include "document/formats/TrackPath.h"

#include <optional>
#include <vector>

/// The place of a point in a list of paths.
struct PointIndex {
    int path = 0;
    int point = 0;

    friend bool operator==(const PointIndex&, const PointIndex&) = default;
};

/// The hit radius, in widget pixels, round a path's point.
constexpr double kHitRadius = 5.0;

/// The first point, in list order, whose whole widget pixel lies nearer to `cursor` (in widget pixels) than
/// the hit radius: a point of an earlier path hides one of a later path at the same place.
[[nodiscard]] std::optional<PointIndex> FindPoint(const std::vector<TrackPath>& paths,
                                                  const CanvasScale& scale, const QPointF& cursor);
