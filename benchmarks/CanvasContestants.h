#pragma once

#include "Figures.h"

/// KIND is canvas or label. Images are SIDE x SIDE, in a view of 1200 x 800 pixels.
///
/// zoom KIND SIDE PERCENT: the first paint after a zoom step, and its memory beyond the pixmap. repaint KIND
/// SIDE PERCENT: the view painted again. repaint-small: 64 x 64 pixels of it painted again. mouse-move KIND
/// SIDE PERCENT: a mouse move with its repaint. pixels: the largest difference to the label's own painting,
/// of 255, on white noise, for groups of view scales. points FILE COUNT PERCENT: COUNT path points over the
/// view, painted; FILE is scratch. drag FILE PATHS POINTS: one step of dragging a point with the ruler shown.
/// blocking SIDE: the longest of many operations on the canvas.
[[nodiscard]] Contestants CanvasContestants();
