#include "canvas/PathExtents.h"

#include <algorithm>
#include <cmath>

namespace {

double Finite(double value) {
    return std::isnan(value) ? 0.0 : std::clamp(value, -1e307, 1e307);
}

PathExtents::OfPath ExtentsOf(const TrackPath& path) {
    PathExtents::OfPath extents;
    for (const QPointF& point : path.points)
        extents.points.Add(point);
    for (const RulerMarks& marks : path.rulerMarks)
        extents.marks.Add(marks);
    return extents;
}

} // namespace

void Extent::Add(const QPointF& point) {
    const double x = Finite(point.x());
    const double y = Finite(point.y());
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
}

void Extent::Add(const RulerMarks& marks) {
    for (const RulerMarks::Band& band : marks.bands)
        for (const QPointF& corner : band)
            Add(corner);
}

const PathExtents::OfPath& PathExtents::Of(const std::vector<TrackPath>& paths, std::size_t index) {
    entries.resize(paths.size());
    Entry& entry = entries[index];
    if (!entry.known)
        entry = {ExtentsOf(paths[index]), true};
    return entry.extents;
}

void PathExtents::PathChanged(std::size_t index) {
    if (index < entries.size())
        entries[index].known = false;
}

void PathExtents::PathsRemoved(std::size_t count) {
    if (count < entries.size())
        entries.resize(count);
}
