#pragma once

#include "CanvasScale.h"
#include "EditingState.h"

class QPainter;

/// Paints what is edited over the height map: paths, rubber band, chosen segment, points, the point under the
/// cursor with its label, and the ruler's bands.
class PathPainter {
  public:
    /// Paints into `painter`, whose coordinates are widget pixels.
    PathPainter(QPainter& painter, const EditingState& state, const CanvasScale& scale);

    void Paint(bool rulerShown);

  private:
    void PaintSegments();
    void PaintRubberBand();
    void PaintCurrentSegment();
    void PaintPoints();
    void PaintDragPoint();
    void PaintBands();
    void PaintBandCorners();

    QPainter& painter;
    const EditingState& state;
    CanvasScale scale;
};
