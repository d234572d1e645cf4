#pragma once

#include "tools/track/LoadedTrack.h"

#include <QPointF>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The height at one place of a path.
struct ProfileSample {
    double distance = 0.0; ///< along the path from its first point, in world units
    QPointF place;         ///< in world units
    std::size_t segment = 0;
    std::optional<std::int32_t> column; ///< of the cell below; none outside the map
    std::optional<std::int32_t> row;
    std::optional<double> height; ///< of that cell; none where it is not measured
};

/// The heights along a path of a track, at even steps from its first point, and at its last one.
struct HeightProfile {
    std::vector<ProfileSample> samples;
    std::vector<double> points; ///< where the path's points are, as distances
};

/// @param path index of the path, which must exist
/// @param step between two samples in world units; none for the finer of the X and Y resolution
/// @throws Failure: Unreadable when the path has no length to speak of; Misused when there would be more than
///         10 million samples, or no step follows from the resolutions
HeightProfile ProfileAlong(const LoadedTrack& track, std::size_t path, std::optional<double> step);

/// A line for each sample, with the columns Distance, X, Y, Segment, Column, Row, Height. Outside the map,
/// and where there is no measurement, fields are empty.
std::string ProfileAsCsv(const HeightProfile& profile);
