#pragma once

#include "canvas/CanvasScale.h"
#include "canvas/PathEditor.h"
#include "canvas/PathExtents.h"
#include "raster/PixelBoard.h"

#include <QFont>
#include <QImage>
#include <QRect>

/// Where the label of a point starts, and what it says: the point's widget pixel.
struct PointLabel {
    /// A label that would start nearer than this to the right edge starts further left.
    static constexpr int kLabelWidth = 41;
    static constexpr int kShift = 40;

    PointLabel(const QPoint& point, int canvasWidth);

    QPoint start;
    QString text;
};

/// Paints what is edited over a part of the height map: paths, rubber band, chosen segment, points, the point
/// under the cursor with its label, and the ruler's bands. A pixel is the same whichever part is painted.
class PathPainter {
  public:
    /// No line, dot or grip reaches further than this from the points it belongs to, in widget pixels.
    static constexpr int kReach = 8;

    /// @param part the image to paint on, in Format_RGB32, `ratio` device pixels a widget pixel
    /// @param place the part's place on the canvas, in device pixels
    PathPainter(QImage& part, const QRect& place, double ratio, const std::vector<TrackPath>& paths,
                const EditingState& state, PathExtents& extents, ShapeCache& shapes,
                const CanvasScale& scale);

    void Paint(bool rulerShown, const QFont& font);

  private:
    void Line(const QPoint& from, const QPoint& to, QRgb colour);
    void Dot(const QPoint& point, QRgb colour);
    void PaintSegments();
    void PaintRubberBand();
    void PaintCurrentSegment();
    void PaintPoints();
    void PaintDragPoint(const QFont& font);
    void PaintLabel(const QPoint& point, const QFont& font);
    void PaintBands();
    void PaintBand(const RulerMarks::Band& band);
    void PaintBandCorners();

    QImage& part;
    QRect place;
    double ratio;
    const std::vector<TrackPath>& paths;
    const EditingState& state;
    PathExtents& extents;
    CanvasScale scale;
    Extent shown;
    PixelBoard board;
};
