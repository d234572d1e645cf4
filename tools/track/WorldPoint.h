#pragma once

#include "document/formats/TrackInfo.h"

#include <QPointF>

/// The point, normalised to the canvas, that a track stores at a place in the world. It is not finite where
/// the track's map has no extent.
inline QPointF NormalisedPoint(const QPointF& place, const WorldTransform& world) {
    return {(place.x() - world.xOffset) / world.xScale, (place.y() - world.yOffset) / world.yScale};
}
