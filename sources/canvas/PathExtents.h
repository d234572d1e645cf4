#pragma once

#include "document/TrackDocument.h"

#include <vector>

/// How far each path and its ruler marks reach, computed when asked for and kept until the path changes, so
/// that painting a small place does not visit every point.
class PathExtents {
  public:
    struct OfPath {
        Extent points;
        Extent marks;
    };

    /// The extents of path `index` of `paths`.
    const OfPath& Of(const std::vector<TrackPath>& paths, std::size_t index);

    void Follow(const PathsChange& change);
    void Follow(const RulerMarksChange& change);

  private:
    struct Entry {
        OfPath extents;
        bool known = false;
    };

    void PathChanged(std::size_t index);

    std::vector<Entry> entries;
};
