#include "canvas/PathEditor.h"

#include "canvas/PointFinder.h"

void PathEditor::Press(const CanvasScale& scale, const QPointF& position) {
    const bool open = static_cast<int>(document->paths().size()) != document->finishedCount();
    if (!open && state.dragPoint.isNull())
        document->addPath(scale.toNormalized(position));
}

bool PathEditor::Release(const CanvasScale& scale, const QPointF& position) {
    const QPointF clamped = scale.ClampToMargin(position);
    if (!state.dragPoint.isNull()) {
        MoveHoverPoint(scale.toNormalized(clamped));
        return false;
    }
    state.rubberPoint = {};
    if (document->paths().empty() || document->paths().back().points.empty())
        return false;
    const QPointF& last = document->paths().back().points.back();
    if (!(Distance(scale.toWidgetPixels(last), clamped) > kHitRadius))
        return false;
    document->addPoint(scale.toNormalized(clamped));
    return true;
}

void PathEditor::Hover(const CanvasScale& scale, const QPointF& position) {
    const auto found = FindPoint(document->paths(), scale, scale.ClampToMargin(position));
    const PointIndex index = found.value_or(PointIndex{});
    state.hoverPath = index.path;
    state.hoverPoint = index.point;
    state.dragPoint = {};
    if (found)
        state.dragPoint = document->paths()[static_cast<std::size_t>(index.path)]
                              .points[static_cast<std::size_t>(index.point)];
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

void PathEditor::ForgetCursor() {
    state.hoverPath = 0;
    state.hoverPoint = 0;
    state.rubberPoint = {};
    state.dragPoint = {};
}

void PathEditor::MoveHoverPoint(const QPointF& point) {
    const PointIndex hovered{state.hoverPath, state.hoverPoint};
    state.dragPoint = point;
    if (document->hasPoint(hovered))
        document->movePoint(hovered, point);
}
