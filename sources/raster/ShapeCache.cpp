#include "raster/ShapeCache.h"

#include "raster/StrokedLine.h"

#include <algorithm>

namespace {

/// The start of a line whose shape is computed: of the usual magnitude, since the last bit of the borders
/// depends on it.
const QPoint kStart(256, 256);

} // namespace

ShapeCache::Line ShapeCache::ShapeOf(const QPoint& delta) {
    const StrokedLine stroked(kStart, kStart + delta, kLineWidth);
    Line line;
    line.firstRow = static_cast<std::int8_t>(stroked.FirstRow() - kStart.y());
    for (int row = stroked.FirstRow(); row <= stroked.LastRow(); ++row) {
        const int first = stroked.FirstColumn(row);
        const int count = std::max(0, stroked.LastColumn(row) - first + 1);
        line.runs.at(static_cast<std::size_t>(line.rows++)) = {static_cast<std::int8_t>(first - kStart.x()),
                                                               static_cast<std::int8_t>(count)};
    }
    return line;
}

ShapeCache::Columns ShapeCache::DotColumns(int column) {
    const StrokedLine dot = StrokedLine::Dot(QPointF(column, kFirstDotRow), kDotWidth, 1.0);
    const int first = dot.FirstColumn(dot.FirstRow());
    return {static_cast<std::int8_t>(first - column),
            static_cast<std::int8_t>(dot.LastColumn(dot.FirstRow()) - first + 1)};
}
