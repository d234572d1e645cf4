#pragma once

#include <QPointF>

#include <array>
#include <vector>

/// The ruler marks of one segment, every point normalised to the canvas (0..1 across and down).
struct RulerMarks {
    using Band = std::array<QPointF, 4>;

    std::vector<QPointF> tickStarts; ///< first end of each tick line across the segment
    std::vector<QPointF> tickEnds;   ///< second end of each tick line
    std::vector<Band> bands;         ///< the rectangle round each tick: Length across, Width along the path
};
