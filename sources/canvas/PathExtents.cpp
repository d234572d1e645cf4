#include "canvas/PathExtents.h"

#include <algorithm>

namespace {

PathExtents::OfPath ExtentsOf(const TrackPath& path) {
    PathExtents::OfPath extents;
    for (const QPointF& point : path.points)
        extents.points.Add(point);
    for (const RulerMarks& marks : path.rulerMarks)
        extents.marks.Add(marks);
    return extents;
}

} // namespace

const PathExtents::OfPath& PathExtents::Of(const std::vector<TrackPath>& paths, std::size_t index) {
    entries.resize(paths.size());
    Entry& entry = entries[index];
    if (!entry.known)
        entry = {ExtentsOf(paths[index]), true};
    return entry.extents;
}

void PathExtents::Follow(const PathsChange& change) {
    const auto changed = [this](PointIndex at) { PathChanged(static_cast<std::size_t>(at.path)); };
    const ChangeHandlers handlers{
        [this](const PathInserted& inserted) { KeepInStep(entries, inserted); },
        [this](const PathRemoved& removed) { KeepInStep(entries, removed); },
        [&](const PointInserted& inserted) { changed(inserted.at); },
        [&](const PointRemoved& removed) { changed(removed.at); },
        [&](const PointMoved& moved) { changed(moved.at); },
        [](const ParameterSet&) {},
        [](const ParameterSetEverywhere&) {},
        [](const FinishedCountSet&) {},
        [this](const AllPathsReplaced&) { entries.clear(); },
    };
    std::visit(handlers, change);
}

void PathExtents::Follow(const RulerMarksChange& change) {
    for (const std::size_t path : change.paths)
        PathChanged(path);
}

void PathExtents::PathChanged(std::size_t index) {
    if (index < entries.size())
        entries[index].known = false;
}
