#pragma once

#include "document/formats/TrackPath.h"

/// One point of a path as both encodings store it.
struct PathPoint {
    int track = 0; ///< the number of its path
    QPointF relative;
    int method = 0;
    int length = 0;
    int width = 0;
    int space = 0;
};

/// Appends a point to the paths read so far: to a new path when its track number is the count of paths,
/// otherwise to the last path. @throws std::runtime_error when there is no path yet for it to belong to
void AppendPoint(const PathPoint& point, std::vector<TrackPath>& paths);
