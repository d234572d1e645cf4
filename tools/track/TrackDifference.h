#pragma once

#include "tools/track/LoadedTrack.h"

#include <QRect>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A number that differs between two tracks.
struct NumberDifference {
    std::string name; ///< as in TrackInfo
    double first = 0.0;
    double second = 0.0;
};

/// How the heights of two maps of the same dimensions differ.
struct HeightDifference {
    std::int64_t differing = 0;  ///< cells measured in both, with different heights
    std::int64_t firstOnly = 0;  ///< cells measured in the first track alone
    std::int64_t secondOnly = 0; ///< cells measured in the second track alone
    double largest = 0.0;        ///< of the differences
    int row = 0;                 ///< of the first cell with that difference
    int column = 0;
    QRect extent; ///< the bounding rectangle of all these cells

    [[nodiscard]] bool IsNone() const { return differing + firstOnly + secondOnly == 0; }
};

/// A point of a path that differs, or that only one of the tracks has.
struct PointDifference {
    std::size_t path = 0;
    std::size_t point = 0;
    std::optional<PathPoint> first; ///< with its position in world coordinates; nullopt if the track lacks it
    std::optional<PathPoint> second;
};

/// The differences of two tracks. Ruler marks follow from the paths and are not compared.
struct TrackDifference {
    std::vector<NumberDifference> numbers;
    std::optional<HeightDifference> heights; ///< nullopt for maps of different dimensions
    std::size_t firstPaths = 0;              ///< the number of paths of each track
    std::size_t secondPaths = 0;
    std::vector<PointDifference> points;

    [[nodiscard]] bool IsNone() const;
};

/// Compares two tracks. The heights of two text tracks are compared unrounded, others as a binary track
/// stores them.
/// @param tolerance in world units: heights and positions that differ by no more count as equal
/// @throws Failure with ExitCode::Unreadable
TrackDifference Compare(const LoadedTrack& first, const LoadedTrack& second, double tolerance);
