#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QPointF>

#include <string>
#include <vector>

/// Which of the two pairs of coordinates of a CSV file are read.
enum class Coordinates { Relative, World };

/// Paths as comma-separated values, one line per point, with the columns of the text encoding's path section.
/// Every number reads back bit for bit.
std::string PathsAsCsv(const std::vector<TrackPath>& paths, const WorldTransform& world);

/// Reads such a file, or the path section of a text track in a separate file. The columns are found by
/// their names and may be in any order; the parameters and Segment may be missing.
/// @throws Failure with ExitCode::Unreadable and the line number, for anything ambiguous or malformed
std::vector<TrackPath> PathsFromCsv(const std::string& file, const WorldTransform& world,
                                    Coordinates coordinates);

/// Paths in the form of a GeoJSON FeatureCollection, but in world coordinates: one LineString feature per
/// path. The segment parameters are arrays in the features' properties.
std::string PathsAsJson(const std::vector<TrackPath>& paths, const WorldTransform& world);

/// Reads such a file. A parameter may be one number for all segments of a path, or missing.
/// @throws Failure with ExitCode::Unreadable and the index of the feature
std::vector<TrackPath> PathsFromJson(const std::string& file, const WorldTransform& world);

/// The canvas point, normalised to 0..1, of a place in world units. Not finite where the map has no extent.
inline QPointF NormalisedPoint(const QPointF& place, const WorldTransform& world) {
    return {(place.x() - world.xOffset) / world.xScale, (place.y() - world.yOffset) / world.yScale};
}
