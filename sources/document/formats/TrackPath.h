#pragma once

#include "document/formats/RulerMarks.h"

#include <QPointF>

#include <cstddef>
#include <vector>

/// One path over the height map. The four parameter lists have as many entries as `points`; entry j belongs
/// to the segment from point j to point j + 1, and the last point's entry, which has no segment, is kept all
/// the same. Lengths are in pixels of the aspect-corrected height-map image.
struct TrackPath {
    std::vector<QPointF> points; ///< normalised to the canvas (0..1 across and down)
    std::vector<int> methods;    ///< 1-based line type
    std::vector<int> lengths;
    std::vector<int> widths;
    std::vector<int> spaces;
    std::vector<RulerMarks> rulerMarks; ///< derived: one entry a segment, or none
};

/// How many ruler ticks the marks of all paths hold.
inline std::size_t RulerTicksHeld(const std::vector<TrackPath>& paths) {
    std::size_t count = 0;
    for (const TrackPath& path : paths) {
        for (const RulerMarks& marks : path.rulerMarks)
            count += marks.tickStarts.size();
    }
    return count;
}
