#include "canvas/PathPainter.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace {

constexpr QRgb kBlue = 0xff0000ffU;
constexpr QRgb kRed = 0xffff0000U;
constexpr QRgb kGreen = 0xff00ff00U;
constexpr QRgb kWhite = 0xffffffffU;

constexpr double kGripWidth = 10.0; ///< in widget pixels

/// What a part of the canvas shows in normalised coordinates, widened by how far lines and dots reach into
/// it.
Extent ShownExtent(const QRect& place, double ratio, const CanvasScale& scale) {
    const double margin = PathPainter::kReach;
    Extent extent;
    extent.Add(scale.toNormalized({place.left() / ratio - margin, place.top() / ratio - margin}));
    extent.Add(scale.toNormalized({place.right() / ratio + margin, place.bottom() / ratio + margin}));
    return extent;
}

} // namespace

PointLabel::PointLabel(const QPoint& point, int canvasWidth)
    : start(canvasWidth - point.x() < kLabelWidth ? point - QPoint(kShift, 0) : point),
      text(QString::number(point.x()) + QLatin1Char(',') + QString::number(point.y())) {
}

PathPainter::PathPainter(QImage& part, const QRect& place, double ratio, const std::vector<TrackPath>& paths,
                         const EditingState& state, PathExtents& extents, ShapeCache& shapes,
                         const CanvasScale& scale)
    : part(part),
      place(place),
      ratio(ratio),
      paths(paths),
      state(state),
      extents(extents),
      scale(scale),
      shown(ShownExtent(place, ratio, scale)),
      board(part, place.topLeft(), shapes) {
}

void PathPainter::Paint(bool rulerShown, const QFont& font) {
    PaintSegments();
    PaintRubberBand();
    PaintCurrentSegment();
    PaintPoints();
    PaintDragPoint(font);
    if (rulerShown) {
        PaintBands();
        PaintBandCorners();
    }
}

void PathPainter::Line(const QPoint& from, const QPoint& to, QRgb colour) {
    if (ratio == 1.0)
        board.Line(from, to, colour);
    else
        board.Line(QPointF(from) * ratio, QPointF(to) * ratio, ShapeCache::kLineWidth * ratio, colour);
}

void PathPainter::Dot(const QPoint& point, QRgb colour) {
    if (ratio == 1.0)
        board.Dot(point, colour);
    else
        board.Dot(point, ShapeCache::kDotWidth, ratio, colour);
}

void PathPainter::PaintSegments() {
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (!extents.Of(paths, index).points.Meets(shown))
            continue;
        const auto& points = paths[index].points;
        QPoint from = scale.toWidgetPixels(points.front());
        for (std::size_t j = 1; j < points.size(); ++j) {
            const QPoint to = scale.toWidgetPixels(points[j]);
            Line(from, to, kBlue);
            from = to;
        }
    }
}

void PathPainter::PaintRubberBand() {
    if (paths.empty() || paths.back().points.empty() || state.rubberPoint.isNull())
        return;
    Line(scale.toWidgetPixels(paths.back().points.back()), scale.toWidgetPixels(state.rubberPoint), kRed);
}

void PathPainter::PaintCurrentSegment() {
    if (state.currentPath < 0 || state.currentPath >= static_cast<int>(paths.size()))
        return;
    const auto& points = paths[static_cast<std::size_t>(state.currentPath)].points;
    if (state.currentSegment < 0 || state.currentSegment >= static_cast<int>(points.size()) - 1)
        return;
    const auto segment = static_cast<std::size_t>(state.currentSegment);
    Line(scale.toWidgetPixels(points[segment + 1]), scale.toWidgetPixels(points[segment]), kRed);
}

void PathPainter::PaintPoints() {
    for (std::size_t index = 0; index < paths.size(); ++index)
        if (extents.Of(paths, index).points.Meets(shown))
            for (const QPointF& point : paths[index].points)
                Dot(scale.toWidgetPixels(point), kGreen);
}

void PathPainter::PaintDragPoint(const QFont& font) {
    if (state.dragPoint.isNull())
        return;
    const QPoint point = scale.toWidgetPixels(state.dragPoint);
    board.Dot(point, kGripWidth, ratio, kGreen);
    PaintLabel(point, font);
}

void PathPainter::PaintLabel(const QPoint& point, const QFont& font) {
    const PointLabel label(point, scale.Canvas().width());
    part.setDevicePixelRatio(ratio);
    QPainter painter(&part);
    painter.translate(-QPointF(place.topLeft()) / ratio);
    painter.setFont(font);
    painter.setPen(QPen(QBrush(Qt::red), 5.0));
    painter.drawText(label.start, label.text);
}

void PathPainter::PaintBands() {
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (!extents.Of(paths, index).marks.Meets(shown))
            continue;
        for (const RulerMarks& marks : paths[index].rulerMarks)
            for (const RulerMarks::Band& band : marks.bands)
                PaintBand(band);
    }
}

void PathPainter::PaintBand(const RulerMarks::Band& band) {
    if (shown.Misses(band))
        return;
    std::array<QPoint, 4> corners;
    std::transform(band.begin(), band.end(), corners.begin(),
                   [this](const QPointF& corner) { return scale.toWidgetPixels(corner); });
    for (std::size_t corner = 0; corner < corners.size(); ++corner)
        Line(corners[corner], corners[(corner + 1) % corners.size()], kWhite);
}

void PathPainter::PaintBandCorners() {
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (!extents.Of(paths, index).marks.Meets(shown))
            continue;
        for (const RulerMarks& marks : paths[index].rulerMarks)
            for (const RulerMarks::Band& band : marks.bands)
                if (!shown.Misses(band))
                    for (const QPointF& corner : band)
                        Dot(scale.toWidgetPixels(corner), kGreen);
    }
}
