#include "canvas/PathEditor.h"

#include "canvas/PointFinder.h"

#include <algorithm>
#include <cmath>

namespace {

/// A coordinate moved by tenths of an image pixel. A coordinate on a tenth moves to another tenth exactly,
/// however often it is moved: it equals the one that a click at that place gives.
double Moved(double coordinate, int tenths, int pixels) {
    constexpr double kTolerance = 1e-6;
    const double perImage = 10.0 * pixels;
    const double place = coordinate * perImage;
    const double nearest = std::round(place);
    return (std::abs(place - nearest) < kTolerance ? nearest + tenths : place + tenths) / perImage;
}

/// `after` kept inside the margin; if `before` is already outside, `after` is kept from moving further out.
double KeptInside(double before, double after, double lowest, double highest) {
    return std::max(std::min(lowest, before), std::min(after, std::max(highest, before)));
}

} // namespace

void PathEditor::Press(const CanvasScale& scale, const QPointF& position) {
    gestureEnded = false;
    dragStart.reset();
    if (hoverByKey)
        Hover(scale, position);
    if (!IsPathOpen() && state.dragPoint.isNull()) {
        document->addPath(scale.toNormalized(position));
        touched = PointIndex{static_cast<int>(document->paths().size()) - 1, 0};
    }
}

bool PathEditor::PressOnSegment(const CanvasScale& scale, const QPointF& position) {
    Hover(scale, position);
    if (!state.dragPoint.isNull())
        return false;
    const auto found = FindSegment(document->paths(), scale, position);
    if (!found)
        return false;
    Split(found->start, found->position);
    gestureEnded = true;
    return true;
}

bool PathEditor::Release(const CanvasScale& scale, const QPointF& position) {
    if (gestureEnded)
        return false;
    const QPointF clamped = scale.ClampToMargin(position);
    if (!state.dragPoint.isNull()) {
        MoveHoverPoint(scale.toNormalized(clamped));
        dragStart.reset();
        return false;
    }
    state.rubberPoint = {};
    if (document->paths().empty() || document->paths().back().points.empty())
        return false;
    const QPointF& last = document->paths().back().points.back();
    if (!(Distance(scale.toWidgetPixels(last), clamped) > kHitRadius))
        return false;
    document->addPoint(scale.toNormalized(clamped));
    touched = PointIndex{static_cast<int>(document->paths().size()) - 1,
                         static_cast<int>(document->paths().back().points.size()) - 1};
    return true;
}

void PathEditor::DoubleClick() {
    if (!gestureEnded)
        document->closePath();
}

void PathEditor::Hover(const CanvasScale& scale, const QPointF& position) {
    gestureEnded = false;
    hoverByKey = false;
    const auto found = FindPoint(document->paths(), scale, scale.ClampToMargin(position));
    const PointIndex index = found.value_or(PointIndex{});
    state.hoverPath = index.path;
    state.hoverPoint = index.point;
    state.dragPoint = found ? PositionOf(index) : QPointF();
}

bool PathEditor::Drag(const CanvasScale& scale, const QPointF& position) {
    if (gestureEnded)
        return false;
    const QPointF point = scale.toNormalized(scale.ClampToMargin(position));
    if (state.dragPoint.isNull()) {
        state.rubberPoint = point;
        return false;
    }
    MoveHoverPoint(point);
    return true;
}

bool PathEditor::GiveUpGesture() {
    const bool dragged = dragStart.has_value() && !state.dragPoint.isNull();
    if (dragged)
        MoveHoverPoint(*dragStart);
    LetGo();
    gestureEnded = true;
    return dragged;
}

void PathEditor::ForgetCursor() {
    state.hoverPath = 0;
    state.hoverPoint = 0;
    state.rubberPoint = {};
    state.dragPoint = {};
    hoverByKey = false;
}

void PathEditor::Reset() {
    state = {};
    touched.reset();
    hoverByKey = false;
}

void PathEditor::Follow(const PathsChange& change) {
    const auto forget = [this] { touched.reset(); };
    const ChangeHandlers handlers{
        [&](const PathInserted&) { forget(); },
        [&](const PathRemoved&) { forget(); },
        [&](const PointInserted&) { forget(); },
        [&](const PointRemoved&) { forget(); },
        [](const PointMoved&) {},
        [](const ParameterSet&) {},
        [](const ParameterSetEverywhere&) {},
        [](const FinishedCountSet&) {},
        [&](const AllPathsReplaced&) { forget(); },
    };
    std::visit(handlers, change);
}

std::optional<PointIndex> PathEditor::TouchedPoint() const {
    const std::optional<PointIndex> at = state.dragPoint.isNull() ? touched : Hovered();
    return at && document->hasPoint(*at) ? at : std::nullopt;
}

void PathEditor::LetGo() {
    ForgetCursor();
    hoverByKey = true; // the cursor may be over a point, which the next press searches for
    touched.reset();
    dragStart.reset();
}

bool PathEditor::MoveTouched(const CanvasScale& scale, const QPoint& tenths, const QSize& image) {
    const auto at = TouchedPoint();
    if (!at || image.isEmpty())
        return false;
    const QPointF before = PositionOf(*at);
    const QPointF lowest = scale.toNormalized({CanvasScale::kEdgeMargin, CanvasScale::kEdgeMargin});
    const QSize canvas = scale.Canvas();
    const QPointF highest = scale.toNormalized(
        {canvas.width() - CanvasScale::kEdgeMargin, canvas.height() - CanvasScale::kEdgeMargin});
    document->endGesture();
    document->movePoint(
        *at,
        {KeptInside(before.x(), Moved(before.x(), tenths.x(), image.width()), lowest.x(), highest.x()),
         KeptInside(before.y(), Moved(before.y(), tenths.y(), image.height()), lowest.y(), highest.y())});
    document->endGesture();
    ShowByKey(*at);
    return true;
}

bool PathEditor::RemoveTouched() {
    const auto at = TouchedPoint();
    if (!at)
        return false;
    LetGo();
    document->removePoint(*at);
    return true;
}

bool PathEditor::AddPoint(const CanvasScale& scale, const QPointF& position) {
    Hover(scale, position);
    if (!state.dragPoint.isNull())
        return false;
    const bool starts = !IsPathOpen();
    Press(scale, position);
    const bool added = Release(scale, position) || starts;
    if (added)
        ShowByKey(*touched);
    return added;
}

bool PathEditor::SplitSegment(const CanvasScale& scale, const std::optional<QPointF>& cursor) {
    const bool overPoint =
        cursor && FindPoint(document->paths(), scale, scale.ClampToMargin(*cursor)).has_value();
    if (cursor && !overPoint) {
        if (const auto found = FindSegment(document->paths(), scale, *cursor)) {
            Split(found->start, found->position);
            return true;
        }
    }
    const PointIndex start{state.currentPath, state.currentSegment};
    if (start.point < 0 || !document->segmentExists(start.path, start.point))
        return false;
    Split(start, (PositionOf(start) + PositionOf({start.path, start.point + 1})) / 2);
    return true;
}

bool PathEditor::ChoosePoint(int delta) {
    std::optional<PointIndex> at = TouchedPoint();
    if (at)
        at = Neighbour(*at, delta);
    else if (const PointIndex chosen{state.currentPath, state.currentSegment}; document->hasPoint(chosen))
        at = chosen;
    else if (document->hasPoint({}))
        at = PointIndex{};
    if (at)
        ShowByKey(*at);
    return at.has_value();
}

void PathEditor::MoveHoverPoint(const QPointF& point) {
    state.dragPoint = point;
    if (!document->hasPoint(Hovered()))
        return;
    if (!dragStart)
        dragStart = PositionOf(Hovered());
    document->movePoint(Hovered(), point);
    touched = Hovered();
}

void PathEditor::ShowByKey(PointIndex at) {
    state.hoverPath = at.path;
    state.hoverPoint = at.point;
    state.dragPoint = PositionOf(at);
    touched = at;
    hoverByKey = true;
}

bool PathEditor::IsPathOpen() const {
    return static_cast<int>(document->paths().size()) != document->finishedCount();
}

QPointF PathEditor::PositionOf(PointIndex at) const {
    return document->paths()[static_cast<std::size_t>(at.path)].points[static_cast<std::size_t>(at.point)];
}

/// Skips paths without points: no file has them, but a caller may.
std::optional<PointIndex> PathEditor::Neighbour(PointIndex at, int delta) const {
    const auto& paths = document->paths();
    at.point += delta;
    while (!document->hasPoint(at)) {
        at.path += delta > 0 ? 1 : -1;
        if (at.path < 0 || at.path >= static_cast<int>(paths.size()))
            return std::nullopt;
        at.point =
            delta > 0 ? 0 : static_cast<int>(paths[static_cast<std::size_t>(at.path)].points.size()) - 1;
    }
    return at;
}

void PathEditor::Split(PointIndex start, const QPointF& position) {
    document->splitSegment(start, position);
    ShowByKey({start.path, start.point + 1});
}
