#pragma once

#include "canvas/CanvasScale.h"
#include "document/PathsChange.h"
#include "document/formats/TrackPath.h"

#include <optional>
#include <vector>

/// A place on a segment.
struct SegmentPlace {
    PointIndex start; ///< the point that the segment starts at
    QPointF position; ///< on the segment, normalised to the canvas
};

/// The place on a segment that is nearest to `cursor` (in widget pixels), when it is nearer than the hit
/// radius; of equally near ones the first in list order.
[[nodiscard]] std::optional<SegmentPlace> FindSegment(const std::vector<TrackPath>& paths,
                                                      const CanvasScale& scale, const QPointF& cursor);
