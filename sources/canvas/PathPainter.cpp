#include "PathPainter.h"

#include <QPainter>

namespace {

QPen SolidPen(Qt::GlobalColor colour, qreal width) {
    return {QBrush(colour), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

QPen PathPen() {
    return SolidPen(Qt::blue, 2.0);
}
QPen HighlightPen() {
    return SolidPen(Qt::red, 2.0);
}
QPen PointPen() {
    return SolidPen(Qt::green, 5.0);
}
QPen GripPen() {
    return SolidPen(Qt::green, 10.0);
}
QPen LabelPen() {
    return SolidPen(Qt::red, 5.0);
}
QPen BandPen() {
    return SolidPen(Qt::white, 2.0);
}

/// A label that would start nearer to the right edge than this starts further left.
constexpr int kLabelRoom = 41;
constexpr int kLabelShift = 40;

} // namespace

PathPainter::PathPainter(QPainter& painter, const EditingState& state, const CanvasScale& scale)
    : painter(painter), state(state), scale(scale) {
}

void PathPainter::Paint(bool rulerShown) {
    PaintSegments();
    PaintRubberBand();
    PaintCurrentSegment();
    PaintPoints();
    PaintDragPoint();
    if (rulerShown) {
        PaintBands();
        PaintBandCorners();
    }
}

void PathPainter::PaintSegments() {
    painter.setPen(PathPen());
    for (const TrackPath& path : state.paths)
        for (std::size_t j = 0; j + 1 < path.points.size(); ++j)
            painter.drawLine(scale.ToWidgetPixels(path.points[j]), scale.ToWidgetPixels(path.points[j + 1]));
}

void PathPainter::PaintRubberBand() {
    if (state.paths.empty() || state.paths.back().points.empty() || state.rubberPoint.isNull())
        return;
    painter.setPen(HighlightPen());
    painter.drawLine(scale.ToWidgetPixels(state.paths.back().points.back()),
                     scale.ToWidgetPixels(state.rubberPoint));
}

void PathPainter::PaintCurrentSegment() {
    if (state.currentPath < 0 || state.currentPath >= static_cast<int>(state.paths.size()))
        return;
    const auto& points = state.paths[static_cast<std::size_t>(state.currentPath)].points;
    if (state.currentSegment < 0 || state.currentSegment >= static_cast<int>(points.size()) - 1)
        return;
    const auto segment = static_cast<std::size_t>(state.currentSegment);
    painter.setPen(HighlightPen());
    painter.drawLine(scale.ToWidgetPixels(points[segment + 1]), scale.ToWidgetPixels(points[segment]));
}

void PathPainter::PaintPoints() {
    painter.setPen(PointPen());
    for (const TrackPath& path : state.paths)
        for (const QPointF& point : path.points)
            painter.drawPoint(scale.ToWidgetPixels(point));
}

void PathPainter::PaintDragPoint() {
    if (state.dragPoint.isNull())
        return;
    const QPoint point = scale.ToWidgetPixels(state.dragPoint);
    painter.setPen(GripPen());
    painter.drawPoint(point);
    painter.setPen(LabelPen());
    const bool fits = scale.Canvas().width() - point.x() >= kLabelRoom;
    painter.drawText(fits ? point : point - QPoint(kLabelShift, 0),
                     QString::number(point.x()) + QLatin1Char(',') + QString::number(point.y()));
}

void PathPainter::PaintBands() {
    painter.setPen(BandPen());
    for (const TrackPath& path : state.paths)
        for (const RulerMarks& marks : path.rulerMarks)
            for (const RulerMarks::Band& band : marks.bands) {
                const std::array<QPoint, 4> corners{
                    scale.ToWidgetPixels(band[0]), scale.ToWidgetPixels(band[1]),
                    scale.ToWidgetPixels(band[2]), scale.ToWidgetPixels(band[3])};
                painter.drawPolygon(corners.data(), static_cast<int>(corners.size()), Qt::OddEvenFill);
            }
}

void PathPainter::PaintBandCorners() {
    painter.setPen(PointPen());
    for (const TrackPath& path : state.paths)
        for (const RulerMarks& marks : path.rulerMarks)
            for (const RulerMarks::Band& band : marks.bands)
                for (const QPointF& corner : band)
                    painter.drawPoint(scale.ToWidgetPixels(corner));
}
