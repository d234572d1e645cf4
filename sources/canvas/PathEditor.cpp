#include "canvas/PathEditor.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kNewMethod = 1;
constexpr int kNewLength = 100;
constexpr int kNewWidth = 50;
constexpr int kNewSpace = 100;

void AppendPoint(TrackPath& path, const QPointF& point) {
    path.points.push_back(point);
    path.methods.push_back(kNewMethod);
    path.lengths.push_back(kNewLength);
    path.widths.push_back(kNewWidth);
    path.spaces.push_back(kNewSpace);
}

void RemoveLastPoint(TrackPath& path) {
    path.points.pop_back();
    path.methods.pop_back();
    path.lengths.pop_back();
    path.widths.pop_back();
    path.spaces.pop_back();
}

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

} // namespace

void PathEditor::Press(const CanvasScale& scale, const QPointF& position) {
    const bool open = static_cast<int>(state.paths.size()) != state.finishedCount;
    if (open || !state.dragPoint.isNull())
        return;
    AppendPoint(state.paths.emplace_back(), scale.toNormalized(position));
}

bool PathEditor::Release(const CanvasScale& scale, const QPointF& position) {
    const QPointF clamped = scale.ClampToMargin(position);
    if (!state.dragPoint.isNull()) {
        MoveHoverPoint(scale.toNormalized(clamped));
        return false;
    }
    state.rubberPoint = {};
    if (state.paths.empty() || state.paths.back().points.empty())
        return false;
    TrackPath& last = state.paths.back();
    if (!(Distance(scale.toWidgetPixels(last.points.back()), clamped) > kHitRadius))
        return false;
    AppendPoint(last, scale.toNormalized(clamped));
    return true;
}

void PathEditor::DoubleClick() {
    if (static_cast<int>(state.paths.size()) > state.finishedCount)
        ++state.finishedCount;
}

void PathEditor::Hover(const CanvasScale& scale, const QPointF& position) {
    const auto found = FindPoint(state.paths, scale, scale.ClampToMargin(position));
    const PointIndex index = found.value_or(PointIndex{});
    state.hoverPath = index.path;
    state.hoverPoint = index.point;
    state.dragPoint = {};
    if (found)
        state.dragPoint =
            state.paths[static_cast<std::size_t>(index.path)].points[static_cast<std::size_t>(index.point)];
}

bool PathEditor::Drag(const CanvasScale& scale, const QPointF& position) {
    const QPointF point = scale.toNormalized(scale.ClampToMargin(position));
    if (state.dragPoint.isNull()) {
        state.rubberPoint = point;
        return false;
    }
    MoveHoverPoint(point);
    return true;
}

void PathEditor::DeleteLast() {
    if (state.paths.empty())
        return;
    if (state.paths.back().points.size() < 3) {
        state.paths.pop_back();
        state.finishedCount = static_cast<int>(state.paths.size());
    } else {
        RemoveLastPoint(state.paths.back());
    }
    state.hoverPath = 0;
    state.hoverPoint = 0;
    state.rubberPoint = {};
    state.dragPoint = {};
}

void PathEditor::Reset() {
    state = {};
}

void PathEditor::TakePaths(std::vector<TrackPath> paths) {
    state.paths = std::move(paths);
}

bool PathEditor::SegmentExists(int path, int segment) const {
    if (path < 0 || path >= static_cast<int>(state.paths.size()))
        return false;
    return segment < static_cast<int>(state.paths[static_cast<std::size_t>(path)].points.size()) - 1;
}

int PathEditor::Parameter(SegmentParameter parameter) const {
    return ListOf(state.paths.at(static_cast<std::size_t>(state.currentPath)), parameter)
        .at(static_cast<std::size_t>(state.currentSegment));
}

bool PathEditor::SetParameter(SegmentParameter parameter, int value) {
    if (state.currentSegment < 0 || !SegmentExists(state.currentPath, state.currentSegment))
        return false;
    ListOf(state.paths[static_cast<std::size_t>(state.currentPath)],
           parameter)[static_cast<std::size_t>(state.currentSegment)] = value;
    return true;
}

void PathEditor::SetParameterEverywhere(SegmentParameter parameter, int value) {
    for (TrackPath& path : state.paths)
        std::ranges::fill(ListOf(path, parameter), value);
}

bool PathEditor::HoverPointExists() const {
    return state.hoverPath >= 0 && state.hoverPath < static_cast<int>(state.paths.size()) &&
           state.hoverPoint >= 0 &&
           state.hoverPoint <
               static_cast<int>(state.paths[static_cast<std::size_t>(state.hoverPath)].points.size());
}

void PathEditor::MoveHoverPoint(const QPointF& point) {
    if (HoverPointExists())
        state.paths[static_cast<std::size_t>(state.hoverPath)]
            .points[static_cast<std::size_t>(state.hoverPoint)] = point;
    state.dragPoint = point;
}
