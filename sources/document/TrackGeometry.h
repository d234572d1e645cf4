#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <optional>

/// The size of a height-map image at a view scale, stretched along one axis so that a unit of distance has
/// the same length across and down: the axis with the larger resolution grows. Rounded to whole pixels,
/// halves upwards; at least 1 x 1. At scale 1 this is the aspect-corrected image size that segment parameters
/// and ruler marks are measured in.
/// @param image columns x rows
QSize ShownImageSize(const QSize& image, double xResolution, double yResolution, double scale = 1.0);

/// Lengths of what is drawn or dragged, in world units.
struct DrawnLengths {
    double segment = 0.0;
    double path = 0.0; ///< of the complete path that the segment belongs to
};

/// Of a path that is drawn on to `end`, which is normalised to the canvas: the new segment, and the path with
/// it. The path has points.
[[nodiscard]] DrawnLengths LengthsTo(const QPointF& end, const TrackPath& path, const WorldTransform& world);

/// Of the segment that ends at a point, or starts there when it is the first. @return none for a path of one
/// point
[[nodiscard]] std::optional<DrawnLengths> LengthsAt(std::size_t point, const TrackPath& path,
                                                    const WorldTransform& world);
