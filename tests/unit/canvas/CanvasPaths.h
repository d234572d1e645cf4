#pragma once

#include "canvas/CanvasScale.h"
#include "document/formats/TrackPath.h"

#include <vector>

/// The canvas of the editor's tests.
inline const CanvasScale kScale{QSize(400, 300)};

/// A path through points given in canvas pixels.
inline TrackPath PathOf(const CanvasScale& scale, const std::vector<QPointF>& pixels) {
    TrackPath path;
    for (const QPointF& pixel : pixels)
        path.points.push_back(scale.toNormalized(pixel));
    return path;
}
