#pragma once

#include "document/formats/TrackPath.h"

#include <QPointF>

#include <vector>

/// All that editing knows. Points are normalised to the canvas; a null point (QPointF::isNull) means "none".
struct EditingState {
    int finishedCount = 0;        ///< paths below this index are closed; a path at it, the last one, is open
    int hoverPath = 0;            ///< path of the point under the cursor or being dragged
    int hoverPoint = 0;           ///< index of that point in its path
    QPointF rubberPoint;          ///< the cursor while the left button is held and nothing is dragged
    QPointF dragPoint;            ///< the point that is under the cursor or being dragged
    int currentPath = 0;          ///< the path whose parameters are shown and set
    int currentSegment = 0;       ///< its segment whose parameters are shown and set
    std::vector<TrackPath> paths; ///< in creation and file order
};
