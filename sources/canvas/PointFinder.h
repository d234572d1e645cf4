#pragma once

#include "canvas/CanvasScale.h"
#include "document/PathsChange.h"
#include "document/formats/TrackPath.h"

#include <optional>
#include <vector>

/// The hit radius, in widget pixels, round a path's point.
constexpr double kHitRadius = 5.0;

/// The first point, in list order, whose rounded widget pixel is nearer to `cursor` (in widget pixels) than
/// the hit radius: a point of an earlier path hides one of a later path at the same place.
[[nodiscard]] std::optional<PointIndex> FindPoint(const std::vector<TrackPath>& paths,
                                                  const CanvasScale& scale, const QPointF& cursor);

/// A place on a segment.
struct SegmentPlace {
    PointIndex start; ///< the point that the segment starts at
    QPointF position; ///< on the segment, normalised to the canvas
};

/// The place on a segment that is nearest to `cursor` (in widget pixels), when it is nearer than the hit
/// radius; of equally near ones the first in list order.
[[nodiscard]] std::optional<SegmentPlace> FindSegment(const std::vector<TrackPath>& paths,
                                                      const CanvasScale& scale, const QPointF& cursor);
