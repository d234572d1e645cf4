#pragma once

#include "document/formats/TrackPath.h"
#include "document/formats/WorldTransform.h"

#include <optional>

/// Lengths of what is drawn or dragged, in world units.
struct DrawnLengths {
    double segment = 0.0;
    double path = 0.0; ///< of the whole path that the segment belongs to
};

/// Of a path that is drawn on to `end`, which is normalised to the canvas: the new segment, and the path with
/// it. The path has points.
[[nodiscard]] DrawnLengths LengthsTo(const QPointF& end, const TrackPath& path, const WorldTransform& world);

/// Of the segment that ends at a point, or starts there when it is the first. @return none for a path of one
/// point
[[nodiscard]] std::optional<DrawnLengths> LengthsAt(std::size_t point, const TrackPath& path,
                                                    const WorldTransform& world);
