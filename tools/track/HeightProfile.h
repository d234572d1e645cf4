#pragma once

#include "document/formats/TrackInfo.h"
#include "tools/track/LoadedTrack.h"

#include <QPointF>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The height at one position on a path.
struct ProfileSample {
    double distance = 0.0; ///< along the path from its first point, in world units
    QPointF place;         ///< in world coordinates
    std::size_t segment = 0;
    std::optional<std::int32_t> column; ///< of the cell at this place; nullopt outside the map
    std::optional<std::int32_t> row;
    std::optional<double> height; ///< of that cell; nullopt where it has no measurement
};

/// The heights along a path at equal steps from its first point, and at its last point.
struct HeightProfile {
    std::vector<ProfileSample> samples;
    std::vector<double> points; ///< the distances of the path's points
};

/// The distances of the points of a path from its first one, in world units; {0} for an empty path.
std::vector<double> DistancesOf(const TrackPath& path, const WorldTransform& world);

/// @param path index of the path, which must exist
/// @param step between two samples in world units; nullopt for the finer of the X and Y resolution
/// @throws Failure: Unreadable when the path has a point that is not finite; Misused when there would be more
///        than 10 million samples, or the resolutions give no step
HeightProfile ProfileAlong(const LoadedTrack& track, std::size_t path, std::optional<double> step);

/// CSV with one line per sample and the columns Distance, X, Y, Segment, Column, Row, Height. Outside the
/// map, and where there is no measurement, fields are empty.
std::string ProfileAsCsv(const HeightProfile& profile);
