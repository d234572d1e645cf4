#pragma once

#include <QPointF>

/// What the mouse and the window's controls have chosen or begun on the paths. Points are normalised to the
/// canvas; a null point (QPointF::isNull) means "none".
struct EditingState {
    int hoverPath = 0;      ///< path of the point under the cursor or being dragged
    int hoverPoint = 0;     ///< index of that point in its path
    QPointF rubberPoint;    ///< the cursor while the left button is held and nothing is dragged
    QPointF dragPoint;      ///< the point that is under the cursor or being dragged
    int currentPath = 0;    ///< the path whose parameters are shown and set
    int currentSegment = 0; ///< its segment whose parameters are shown and set
};
