#pragma once

#include "tools/track/LoadedTrack.h"

#include <QRect>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A number that two tracks have differently.
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
    QRect extent; ///< columns and rows in which all of these cells lie

    [[nodiscard]] bool IsNone() const { return differing + firstOnly + secondOnly == 0; }
};

/// A point of a path that is different, or that one of the tracks alone has.
struct PointDifference {
    std::size_t path = 0;
    std::size_t point = 0;
    std::optional<PathPoint> first; ///< with its place in world units
    std::optional<PathPoint> second;
};

/// What is different in two tracks. Ruler marks follow from the paths and do not count.
struct TrackDifference {
    std::vector<NumberDifference> numbers;
    std::optional<HeightDifference> heights; ///< none for maps of different dimensions
    std::size_t firstPaths = 0;              ///< how many each track has
    std::size_t secondPaths = 0;
    std::vector<PointDifference> points;

    [[nodiscard]] bool IsNone() const;
};

/// Compares two tracks. The heights of two text tracks are compared as they are written, others as a binary
/// track holds them.
/// @param tolerance heights and places, in world units, that differ by no more count as equal
/// @throws Failure with ExitCode::Unreadable
TrackDifference Compare(const LoadedTrack& first, const LoadedTrack& second, double tolerance);
