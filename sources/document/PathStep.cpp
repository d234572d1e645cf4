#include "document/PathStep.h"

#include <algorithm>
#include <utility>

namespace {

std::size_t BytesOf(const TrackPath& path) {
    const std::size_t numbers =
        path.methods.capacity() + path.lengths.capacity() + path.widths.capacity() + path.spaces.capacity();
    return path.points.capacity() * sizeof(QPointF) + numbers * sizeof(int);
}

} // namespace

void AddPathStep::Redo(PathList& paths) {
    TrackPath path;
    path.AppendPoint(point);
    paths.InsertPath(paths.Count(), std::move(path));
}

void AddPathStep::Undo(PathList& paths) {
    paths.TakePath(paths.Count() - 1);
}

void InsertPointStep::Redo(PathList& paths) {
    paths.InsertPoint(at, point);
}

void InsertPointStep::Undo(PathList& paths) {
    paths.RemovePoint(at);
}

void RemovePointStep::Redo(PathList& paths) {
    point = paths.PathOf(at).PointAt(static_cast<std::size_t>(at.point));
    paths.RemovePoint(at);
}

void RemovePointStep::Undo(PathList& paths) {
    paths.InsertPoint(at, point);
}

void RemovePathStep::Redo(PathList& paths) {
    finishedCount = paths.FinishedCount();
    path = paths.TakePath(index);
    path.rulerMarks = {};
    paths.SetFinishedCount(paths.Count());
}

void RemovePathStep::Undo(PathList& paths) {
    paths.InsertPath(index, std::exchange(path, {}));
    paths.SetFinishedCount(finishedCount);
}

std::size_t RemovePathStep::Bytes() const {
    return BytesOf(path);
}

void ReplaceAllStep::Redo(PathList& paths) {
    paths.Swap(others, othersFinishedCount);
    for (TrackPath& path : others)
        path.rulerMarks = {};
}

void ReplaceAllStep::Undo(PathList& paths) {
    Redo(paths);
}

std::size_t ReplaceAllStep::Bytes() const {
    std::size_t bytes = others.capacity() * sizeof(TrackPath);
    for (const TrackPath& path : others)
        bytes += BytesOf(path);
    return bytes;
}

void MovePointStep::Redo(PathList& paths) {
    from = paths.PathOf(at).points[static_cast<std::size_t>(at.point)];
    paths.MovePoint(at, to);
}

void MovePointStep::Undo(PathList& paths) {
    paths.MovePoint(at, from);
}

bool MovePointStep::MergeWith(const PathStep& next) {
    const auto* const move = dynamic_cast<const MovePointStep*>(&next);
    if (move == nullptr || !(move->at == at))
        return false;
    to = move->to;
    return true;
}

/// Number by number: QPointF's comparison treats points that are close as equal.
bool MovePointStep::ChangesNothing() const {
    return from.x() == to.x() && from.y() == to.y();
}

void ClosePathsStep::Redo(PathList& paths) {
    paths.SetFinishedCount(paths.FinishedCount() + count);
}

void ClosePathsStep::Undo(PathList& paths) {
    paths.SetFinishedCount(paths.FinishedCount() - count);
}

void SetParameterStep::Redo(PathList& paths) {
    before = paths.Parameter(at, parameter);
    paths.SetParameter(at, parameter, after);
}

void SetParameterStep::Undo(PathList& paths) {
    paths.SetParameter(at, parameter, before);
}

bool SetParameterStep::MergeWith(const PathStep& next) {
    const auto* const set = dynamic_cast<const SetParameterStep*>(&next);
    if (set == nullptr || !(set->at == at) || set->parameter != parameter)
        return false;
    after = set->after;
    return true;
}

SetParameterEverywhereStep::SetParameterEverywhereStep(const PathList& paths, SegmentParameter which,
                                                       int newValue)
    : parameter(which), value(newValue) {
    others.reserve(paths.Paths().size());
    for (const TrackPath& path : paths.Paths())
        others.emplace_back(path.points.size(), value);
}

void SetParameterEverywhereStep::Redo(PathList& paths) {
    paths.SwapParameter(parameter, others);
}

void SetParameterEverywhereStep::Undo(PathList& paths) {
    paths.SwapParameter(parameter, others);
}

bool SetParameterEverywhereStep::MergeWith(const PathStep& next) {
    const auto* const set = dynamic_cast<const SetParameterEverywhereStep*>(&next);
    if (set == nullptr || set->parameter != parameter)
        return false;
    value = set->value;
    return true;
}

bool SetParameterEverywhereStep::ChangesNothing() const {
    return std::ranges::all_of(others, [this](const std::vector<int>& list) {
        return std::ranges::all_of(list, [this](int other) { return other == value; });
    });
}

std::size_t SetParameterEverywhereStep::Bytes() const {
    std::size_t bytes = others.capacity() * sizeof(std::vector<int>);
    for (const std::vector<int>& list : others)
        bytes += list.capacity() * sizeof(int);
    return bytes;
}
