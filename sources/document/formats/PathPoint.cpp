#include "document/formats/PathPoint.h"

#include <cstdint>
#include <stdexcept>
#include <string>

void AppendPoint(const PathPoint& point, std::vector<TrackPath>& paths) {
    if (point.track == static_cast<std::int64_t>(paths.size()))
        paths.emplace_back();
    else if (paths.empty())
        throw std::runtime_error("A point of path " + std::to_string(point.track) +
                                 " comes before the first path");
    TrackPath& path = paths.back();
    path.points.push_back(point.relative);
    path.methods.push_back(point.method);
    path.lengths.push_back(point.length);
    path.widths.push_back(point.width);
    path.spaces.push_back(point.space);
}
