#include "document/Extent.h"

#include <algorithm>
#include <cmath>

namespace {

double Finite(double value) {
    return std::isnan(value) ? 0.0 : std::clamp(value, -1e307, 1e307);
}

} // namespace

void Extent::Add(const QPointF& point) {
    const double x = Finite(point.x());
    const double y = Finite(point.y());
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
}

void Extent::Add(const RulerMarks& marks) {
    for (const RulerMarks::Band& band : marks.bands)
        for (const QPointF& corner : band)
            Add(corner);
}
