#include "document/PathList.h"

#include <algorithm>
#include <utility>

namespace {

template<typename Path>
auto& ListOf(Path& path, SegmentParameter parameter) {
    switch (parameter) {
    case SegmentParameter::Method:
        return path.methods;
    case SegmentParameter::Length:
        return path.lengths;
    case SegmentParameter::Width:
        return path.widths;
    case SegmentParameter::Space:
        break;
    }
    return path.spaces;
}

std::size_t Place(PointIndex at) {
    return static_cast<std::size_t>(at.point);
}

} // namespace

bool PathList::HasPoint(PointIndex at) const {
    return at.path >= 0 && at.path < Count() && at.point >= 0 &&
           at.point < static_cast<int>(PathOf(at).points.size());
}

void PathList::InsertPath(int index, TrackPath path) {
    paths.insert(paths.begin() + index, std::move(path));
    report(PathInserted{index});
}

TrackPath PathList::TakePath(int index) {
    const auto place = paths.begin() + index;
    TrackPath taken = std::move(*place);
    paths.erase(place);
    report(PathRemoved{index});
    return taken;
}

void PathList::SetFinishedCount(int count) {
    finishedCount = count;
    report(FinishedCountSet{});
}

void PathList::InsertPoint(PointIndex at, const PathPoint& point) {
    Path(at).InsertPoint(Place(at), point);
    report(PointInserted{at});
}

void PathList::RemovePoint(PointIndex at) {
    Path(at).RemovePoint(Place(at));
    report(PointRemoved{at});
}

void PathList::MovePoint(PointIndex at, const QPointF& position) {
    const QPointF before = std::exchange(Path(at).points[Place(at)], position);
    report(PointMoved{at, before});
}

int PathList::Parameter(PointIndex at, SegmentParameter parameter) const {
    return ListOf(PathOf(at), parameter)[Place(at)];
}

bool PathList::HasEverywhere(SegmentParameter parameter, int value) const {
    return std::ranges::all_of(paths, [&](const TrackPath& path) {
        return std::ranges::all_of(ListOf(path, parameter), [value](int other) { return other == value; });
    });
}

void PathList::SetParameter(PointIndex at, SegmentParameter parameter, int value) {
    ListOf(Path(at), parameter)[Place(at)] = value;
    report(ParameterSet{at, parameter});
}

void PathList::SwapParameter(SegmentParameter parameter, std::vector<std::vector<int>>& values) {
    for (std::size_t index = 0; index < paths.size(); ++index)
        ListOf(paths[index], parameter).swap(values[index]);
    report(ParameterSetEverywhere{parameter});
}

void PathList::Swap(std::vector<TrackPath>& otherPaths, int& otherFinishedCount) {
    paths.swap(otherPaths);
    std::swap(finishedCount, otherFinishedCount);
    report(AllPathsReplaced{});
}
