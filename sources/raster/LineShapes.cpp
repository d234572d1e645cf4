#include "raster/LineShapes.h"

#include "raster/PixelEdges.h"
#include "raster/SlantedLine.h"

#include <algorithm>

namespace {

LineShapes::Shape::Run RunBetween(int first, int last) {
    return {static_cast<std::int8_t>(first), static_cast<std::int8_t>(std::max(0, last - first + 1))};
}

} // namespace

LineShapes::Shape LineShapes::ShapeOf(const QPoint& way) {
    return way.x() == 0 || way.y() == 0 ? UprightOrLevel(way) : Slanted(way);
}

LineShapes::Shape LineShapes::UprightOrLevel(const QPoint& way) {
    constexpr double kHalf = kWidth / 2.0;
    Shape shape;
    const int top = PixelEdges::FirstBehind(std::min(0, way.y()) - kHalf);
    const int bottom = PixelEdges::LastUpTo(std::max(0, way.y()) + kHalf);
    shape.firstRow = static_cast<std::int8_t>(top);
    shape.rows = static_cast<std::int16_t>(bottom - top + 1);
    shape.runs.fill(RunBetween(PixelEdges::FirstBehind(std::min(0, way.x()) - kHalf),
                               PixelEdges::LastUpTo(std::max(0, way.x()) + kHalf)));
    return shape;
}

LineShapes::Shape LineShapes::Slanted(const QPoint& way) {
    const SlantedLine line(way, kWidth);
    Shape shape;
    const int top = PixelEdges::FirstBehind(line.Top());
    const int bottom = PixelEdges::LastUpTo(line.Bottom());
    shape.firstRow = static_cast<std::int8_t>(top);
    for (int row = top; row <= bottom; ++row)
        shape.runs.at(static_cast<std::size_t>(shape.rows++)) = RunBetween(
            PixelEdges::FirstBehind(line.Left(row + 0.5)), PixelEdges::LastUpTo(line.Right(row + 0.5)));
    return shape;
}
