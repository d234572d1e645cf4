#pragma once

#include "document/formats/TrackPath.h"

#include <QPointF>

#include <cstddef>
#include <variant>
#include <vector>

/// The place of a point in a list of paths.
struct PointIndex {
    int path = 0;
    int point = 0;

    friend bool operator==(const PointIndex&, const PointIndex&) = default;
};

/// A path was inserted; those from its index on moved up by one.
struct PathInserted {
    int path;
};

/// The path that had this index was removed; those after it moved down by one.
struct PathRemoved {
    int path;
};

/// A point was inserted; those after it in its path moved up by one.
struct PointInserted {
    PointIndex at;
};

/// The point that was at `at` was removed; those after it in its path moved down by one.
struct PointRemoved {
    PointIndex at;
};

/// A point is at another position.
struct PointMoved {
    PointIndex at;
    QPointF before; ///< where it was, normalised to the canvas
};

/// A parameter of one point, and so of the segment that it starts, was set.
struct ParameterSet {
    PointIndex at;
    SegmentParameter parameter;
};

/// A parameter of every point of every path was set.
struct ParameterSetEverywhere {
    SegmentParameter parameter;
};

/// The number of closed paths has changed.
struct FinishedCountSet {};

/// All paths were replaced by others.
struct AllPathsReplaced {};

/// What changed in a list of paths, reported after the change. Caches for single paths, points or segments
/// use it to discard what is outdated.
using PathsChange = std::variant<PathInserted, PathRemoved, PointInserted, PointRemoved, PointMoved,
                                 ParameterSet, ParameterSetEverywhere, FinishedCountSet, AllPathsReplaced>;

/// Builds a visitor for a PathsChange from one lambda for each kind of change.
template<typename... Handlers>
struct ChangeHandlers : Handlers... {
    using Handlers::operator()...;
};
template<typename... Handlers>
ChangeHandlers(Handlers...) -> ChangeHandlers<Handlers...>;

/// Keeps a list with one entry for each path in step with the paths. Paths after the last entry have none
/// yet.
template<typename Entry>
void KeepInStep(std::vector<Entry>& entries, const PathInserted& inserted) {
    if (static_cast<std::size_t>(inserted.path) < entries.size())
        entries.insert(entries.begin() + inserted.path, Entry());
}
template<typename Entry>
void KeepInStep(std::vector<Entry>& entries, const PathRemoved& removed) {
    if (static_cast<std::size_t>(removed.path) < entries.size())
        entries.erase(entries.begin() + removed.path);
}
